#include "Platform/Desktop/DesktopPlatform.h"

#include "Platform/Desktop/DBusNotificationCenter.h"
#include "Platform/Desktop/DesktopAccessibility.h"
#include "Platform/Desktop/DesktopText.h"
#include "Platform/Desktop/DesktopWorkspace.h"
#include "Platform/Desktop/Discovery/DesktopDiscovery.h"
#include "Platform/Desktop/ForgetfulBodies.h"
#include "Platform/Desktop/LoopbackNotificationCenter.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/SessionBus.h"
#include "Platform/LocalNotificationCenter.h"
#include "Platform/Posix/AutostartEntry.h"
#include "Platform/Posix/FilePreferences.h"
#include "Platform/Posix/PosixBundle.h"
#include "Platform/Posix/PosixFileManager.h"
#include "Platform/Posix/PosixProcessTable.h"
#include "Platform/Posix/PosixSearchPaths.h"
#include "Platform/Posix/PosixSystemVersion.h"
#include "Platform/Posix/StandardErrorLog.h"
#include "Platform/Posix/SysfsRegistry.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <optional>

namespace farview
{
namespace
{

constexpr auto environment = EnvironmentUse::honoured;

std::string programName()
{
    return QFileInfo(QCoreApplication::applicationFilePath()).fileName().toStdString();
}

} // namespace

struct DesktopPlatform::Bodies {
    StandardErrorLog log{programName()};
    LocalNotificationCenter notificationCenter;
    AutostartEntry loginItem{environment};
    PosixBundles bundles{environment, log};
    PosixFileManager fileManager;
    FilePreferences preferences{PreferencesLocations(environment), log};
    PosixProcessTable processTable;
    PosixSearchPaths searchPaths{environment};
    PosixSystemVersion systemVersion;
    SysfsRegistry registry{DriverExtensions(searchPaths.extensionFolders())};
    DesktopText text;
    QtRunLoop runLoop;
    SessionBus bus{log};
    DesktopAccessibility accessibility{bus};

    // These reach beyond the process, and are made only for use,
    std::optional<DBusNotificationCenter> distributedCenter;
    std::optional<DesktopWorkspace> workspace;
    std::optional<DesktopDiscovery> discovery;
    // these take their places in a smoke test.
    std::optional<LoopbackNotificationCenter> loopbackCenter;
    std::optional<ForgetfulPreferences> forgetfulPreferences;
    std::optional<ForgetfulFileManager> forgetfulFileManager;
};

DesktopPlatform::DesktopPlatform(DesktopPlatformOptions options)
    : mBodies(std::make_unique<Bodies>())
{
    mPlatform.accessibility = &mBodies->accessibility;
    mPlatform.bundles = &mBodies->bundles;
    mPlatform.log = &mBodies->log;
    mPlatform.notificationCenter = &mBodies->notificationCenter;
    mPlatform.processTable = &mBodies->processTable;
    mPlatform.registry = &mBodies->registry;
    mPlatform.runLoop = &mBodies->runLoop;
    mPlatform.searchPaths = &mBodies->searchPaths;
    mPlatform.systemVersion = &mBodies->systemVersion;
    mPlatform.text = &mBodies->text;
    if (options.isSmokeTest)
        composeForSmokeTest();
    else
        composeForUse();
}

DesktopPlatform::~DesktopPlatform() = default;

Platform& DesktopPlatform::platform() { return mPlatform; }

SessionBus& DesktopPlatform::sessionBus() { return mBodies->bus; }

void DesktopPlatform::composeForUse()
{
    auto& own = *mBodies;
    mPlatform.discovery = &own.discovery.emplace(own.log);
    mPlatform.distributedNotificationCenter =
        &own.distributedCenter.emplace(own.bus, own.runLoop, own.log);
    mPlatform.fileManager = &own.fileManager;
    mPlatform.loginItem = &own.loginItem;
    mPlatform.preferences = &own.preferences;
    mPlatform.workspace = &own.workspace.emplace(own.bus, own.bundles, own.runLoop, own.log);
}

void DesktopPlatform::composeForSmokeTest()
{
    auto& own = *mBodies;
    mPlatform.distributedNotificationCenter = &own.loopbackCenter.emplace(own.runLoop);
    mPlatform.fileManager = &own.forgetfulFileManager.emplace(own.fileManager);
    mPlatform.preferences = &own.forgetfulPreferences.emplace(own.preferences);
}

} // namespace farview
