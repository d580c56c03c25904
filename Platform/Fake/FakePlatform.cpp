#include "Platform/Fake/FakePlatform.h"

namespace farview
{

FakePlatform::FakePlatform() : discovery(runLoop), distributedNotificationCenter(runLoop)
{
    mPlatform.accessibility = &accessibility;
    mPlatform.application = application.get();
    mPlatform.bundles = &bundles;
    mPlatform.discovery = &discovery;
    mPlatform.distributedNotificationCenter = &distributedNotificationCenter;
    mPlatform.fileManager = &fileManager;
    mPlatform.registry = &registry;
    mPlatform.log = &log;
    mPlatform.loginItem = &loginItem;
    mPlatform.notificationCenter = &notificationCenter;
    mPlatform.preferences = &preferences;
    mPlatform.processTable = &processTable;
    mPlatform.runLoop = &runLoop;
    mPlatform.searchPaths = &searchPaths;
    mPlatform.systemVersion = &systemVersion;
    mPlatform.text = &text;
    mPlatform.workspace = &workspace;
}

} // namespace farview
