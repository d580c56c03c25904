#include "Applications/ScreenCapture/NetworkDeviceLink.h"
#include "Applications/ScreenCapture/PortalWords.h"
#include "Applications/ScreenCapture/ScreenServer.h"
#include "Applications/TerminationSignals.h"
#include "Common/FVEConstants.h"
#include "Platform/Desktop/Bus/SingleInstance.h"
#include "Platform/Desktop/DesktopPlatform.h"
#include "Platform/Desktop/Programs/DetachedProcess.h"
#include "Platform/Desktop/Programs/Supervisor.h"
#include "Platform/Desktop/Screens/DesktopScreens.h"
#include "Platform/Platform.h"

#include <QCoreApplication>

#include <memory>
#include <new>

namespace
{

using namespace farview;

/// After a crash: the user may have switched the system off while no server ran to hear of it.
bool isStillWanted(FVEPreferences& preferences, Log& log)
{
    const bool wanted = preferences.currentState() != 0;
    log.write(LogLevel::error, wanted ? "Started again after a crash"
                                      : "Not started again after a crash: Farview is off");
    return wanted;
}

/// Whether Farview was switched off between the launch and now, so that the request to quit was
/// posted before anybody listened. Who starts a server by hand wants one, whatever is stored.
bool wasSwitchedOffMeanwhile(FVEPreferences& preferences)
{
    preferences.synchronize();
    return wasStartedDetached() && preferences.currentState() == 0;
}

/// Where the choice of a device is kept until the supervisor ends, too.
KeptText& chosenDeviceOfAllServers()
{
    static KeptText ofThisServer;
    void* const memory = memorySharedWithChildren(sizeof(KeptText));
    return memory ? *new (memory) KeptText : ofThisServer;
}

/// It lies beside this one.
std::string watcherProgram()
{
    return (QCoreApplication::applicationDirPath() + "/farview-monitor-watcher").toStdString();
}

int runServer(int argc, char** argv, unsigned crashes, KeptText& chosenDevice)
{
    QCoreApplication application(argc, argv);
    DesktopPlatform desktop({});
    Platform& platform = desktop.platform();
    const Platform::Scope scope(platform);
    FVEPreferences preferences(*platform.preferences, *platform.distributedNotificationCenter);
    if (crashes > 0 && !isStillWanted(preferences, *platform.log))
        return 0;
    DesktopScreens screens(*platform.runLoop, desktop.sessionBus(), watcherProgram(),
                           portalWordsIn(*platform.preferences));
    SingleInstance instance(desktop.sessionBus(), kFVEScreenServerBundleID);
    const auto makeLink = [] {
        return std::make_shared<NetworkDeviceLink>(ownKeyPath(PairedPeers::devices));
    };
    const auto server = std::make_shared<ScreenServer>(
        ScreenServer::Services{*platform.discovery, *platform.runLoop, *platform.notificationCenter,
                               *platform.distributedNotificationCenter, preferences, makeLink,
                               screens.screens(), *platform.log, *platform.clock,
                               *platform.preferences, chosenDevice},
        ScreenServer::Ending{[&] { instance.release(); }, [&] { application.quit(); }});
    const TerminationSignals termination([&] { server->quit(); });
    QObject::connect(&instance, &SingleInstance::replaced, &application, [&] { server->quit(); });
    // In this order: who sees the server running can rely on being heard.
    server->listen();
    instance.acquire([&](bool isTheOne) {
        if (!isTheOne)
            return application.quit();
        instance.whenItsTurnComes([&] { server->start(); });
        // Only now: what is switched off later is heard.
        if (wasSwitchedOffMeanwhile(preferences))
            server->quit();
    });
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    KeptText& chosenDevice = chosenDeviceOfAllServers();
    const auto server = [&](unsigned crashes) {
        return runServer(argc, argv, crashes, chosenDevice);
    };
    return runSupervised(server, {});
}
