#include "Platform/Desktop/DesktopPlatform.h"

#include "Platform/Clock.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/DesktopText.h"
#include "Platform/Desktop/Discovery/DesktopDiscovery.h"
#include "Platform/Desktop/Notifications/DBusNotificationCenter.h"
#include "Platform/Desktop/Notifications/LoopbackNotificationCenter.h"
#include "Platform/Desktop/OverlayBodies.h"
#include "Platform/Desktop/Programs/DesktopWorkspace.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Rights/DesktopAccessibility.h"
#include "Platform/Desktop/Rights/PolkitAuthorization.h"
#include "Platform/Desktop/Updates/DesktopNetworkCondition.h"
#include "Platform/Desktop/Updates/EngineUpdater.h"
#include "Platform/LocalNotificationCenter.h"
#include "Platform/Posix/AutostartEntry.h"
#include "Platform/Posix/InstalledFirewall.h"
#include "Platform/Posix/PosixBundle.h"
#include "Platform/Posix/PosixFileManager.h"
#include "Platform/Posix/PosixSearchPaths.h"
#include "Platform/Posix/PosixSystemVersion.h"
#include "Platform/Posix/Processes/PosixProcessTable.h"
#include "Platform/Posix/Registry/SysfsRegistry.h"
#include "Platform/Posix/Settings/FilePreferences.h"
#include "Platform/Posix/StandardErrorLog.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <optional>

namespace farview
{
namespace
{

constexpr auto environment = EnvironmentUse::honoured;
constexpr int standardError = 2;
constexpr int nowhere = -1;

class SystemClock final : public Clock
{
    std::chrono::system_clock::time_point date() override
    {
        return std::chrono::system_clock::now();
    }
};

std::string programName()
{
    return QFileInfo(QCoreApplication::applicationFilePath()).fileName().toStdString();
}

} // namespace

struct DesktopPlatform::Bodies {
    explicit Bodies(int logDescriptor) : log(programName(), logDescriptor) {}

    StandardErrorLog log;
    QtRunLoop runLoop;
    LocalNotificationCenter notificationCenter;
    AutostartEntry loginItem{environment};
    PosixBundles bundles{environment, log};
    PosixFileManager fileManager;
    InstalledFirewall firewall;
    SystemClock clock;
    FilePreferences preferences{PreferencesLocations(environment), log, &runLoop};
    PosixProcessTable processTable;
    PosixSearchPaths searchPaths{environment};
    PosixSystemVersion systemVersion;
    SysfsRegistry registry{DriverExtensions(searchPaths.extensionFolders())};
    DesktopText text;
    SessionBus bus{log};
    DesktopAccessibility accessibility{bus};

    // These reach beyond the process, and are made only for use,
    std::optional<PolkitAuthorization> authorization;
    std::optional<DBusNotificationCenter> distributedCenter;
    std::optional<DesktopWorkspace> workspace;
    std::optional<DesktopDiscovery> discovery;
    std::optional<DesktopNetworkCondition> networkCondition;
    std::optional<EngineUpdaters> updaters;
    // these take their places in a smoke test.
    std::optional<LoopbackNotificationCenter> loopbackCenter;
    std::optional<OverlayPreferences> overlayPreferences;
    std::optional<OverlayFileManager> overlayFileManager;
};

DesktopPlatform::DesktopPlatform(DesktopPlatformOptions options)
    : mBodies(std::make_unique<Bodies>(options.isSilent ? nowhere : standardError))
{
    mPlatform.accessibility = &mBodies->accessibility;
    mPlatform.bundles = &mBodies->bundles;
    mPlatform.clock = &mBodies->clock;
    mPlatform.firewall = &mBodies->firewall;
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
    mPlatform.authorization = &own.authorization.emplace(PolkitPlaces{});
    mPlatform.discovery = &own.discovery.emplace(own.log);
    mPlatform.distributedNotificationCenter =
        &own.distributedCenter.emplace(own.bus, own.runLoop, own.log);
    mPlatform.fileManager = &own.fileManager;
    mPlatform.loginItem = &own.loginItem;
    mPlatform.networkCondition = &own.networkCondition.emplace(NetworkPlaces{});
    mPlatform.preferences = &own.preferences;
    mPlatform.updaters = &own.updaters.emplace(QCoreApplication::applicationFilePath(), own.log);
    mPlatform.workspace = &own.workspace.emplace(own.bus, own.bundles, own.runLoop, own.log);
}

void DesktopPlatform::composeForSmokeTest()
{
    auto& own = *mBodies;
    mPlatform.distributedNotificationCenter = &own.loopbackCenter.emplace(own.runLoop);
    mPlatform.fileManager = &own.overlayFileManager.emplace(own.fileManager);
    mPlatform.preferences = &own.overlayPreferences.emplace(own.preferences);
}

} // namespace farview
