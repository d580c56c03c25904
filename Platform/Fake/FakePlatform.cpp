#include "Platform/Fake/FakePlatform.h"

namespace farview
{

FakePlatform::FakePlatform() : discovery(runLoop), distributedNotificationCenter(runLoop)
{
    mPlatform.accessibility = &accessibility;
    mPlatform.application = application.get();
    mPlatform.authorization = &authorization;
    mPlatform.bundles = &bundles;
    mPlatform.clock = &clock;
    mPlatform.discovery = &discovery;
    mPlatform.displayConfiguration = &displayConfiguration;
    mPlatform.distributedNotificationCenter = &distributedNotificationCenter;
    mPlatform.fileManager = &fileManager;
    mPlatform.firewall = &firewall;
    mPlatform.graphicsControl = &graphicsControl;
    mPlatform.registry = &registry;
    mPlatform.log = &log;
    mPlatform.loginItem = &loginItem;
    mPlatform.networkCondition = &networkCondition;
    mPlatform.notificationCenter = &notificationCenter;
    mPlatform.preferences = &preferences;
    mPlatform.processTable = &processTable;
    mPlatform.runLoop = &runLoop;
    mPlatform.searchPaths = &searchPaths;
    mPlatform.systemVersion = &systemVersion;
    mPlatform.text = &text;
    mPlatform.updaters = &updaters;
    mPlatform.virtualScreens = &virtualScreens;
    mPlatform.workspace = &workspace;
}

} // namespace farview
