#include "Applications/FarviewStatusItem/ServerLaunch.h"
#include "Applications/FarviewStatusItem/StatusMenu.h"
#include "Applications/FarviewStatusItem/Tray.h"
#include "Applications/OwnPane.h"
#include "Applications/TerminationSignals.h"
#include "Common/FVEConstants.h"
#include "Platform/Desktop/Bus/SingleInstance.h"
#include "Platform/Desktop/DesktopPlatform.h"
#include "Platform/Desktop/Programs/DetachedProcess.h"
#include "Platform/Log.h"
#include "Platform/RunLoop.h"

#include <QApplication>

#include <cstring>
#include <memory>

namespace
{

using namespace farview;

/// How long the start of the server may take: a running one is asked first whether it stays.
constexpr Duration launchLimit{3.0};

bool hasDisplay()
{
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

int runStatusItem(QApplication& application, DesktopPlatform& desktop, SingleInstance& instance,
                  FVEPreferences& preferences)
{
    Platform& platform = desktop.platform();
    const auto menu = std::make_shared<StatusMenu>(
        StatusMenu::Services{platform, preferences, ownPane(platform)}, [&] {
            instance.release();
            application.quit();
        });
    Tray tray(desktop.sessionBus(), *platform.log,
              [&] { menu->perform({"openPreferences:"}, nullptr); });
    menu->setChanged([&] { tray.show(menu->display()); });
    const TerminationSignals termination([&] { menu->quit(); });
    QObject::connect(&instance, &SingleInstance::replaced, &application, [&] { menu->quit(); });
    instance.whenItsTurnComes([&] {
        menu->start();
        // It may have been switched off before anybody listened.
        preferences.synchronize();
        if (wasStartedDetached() && !preferences.showInMenuBar())
            menu->quit();
    });
    const int status = QApplication::exec();
    menu->setChanged([] {});
    return status;
}

/// Whether this is the instance of the program now.
bool becomeTheOne(SingleInstance& instance)
{
    bool result = false;
    instance.acquire([&](bool isTheOne) {
        result = isTheOne;
        QApplication::exit();
    });
    QApplication::exec();
    return result;
}

/// Ends when the start of the server, which may take a turn, is done.
int endAfterLaunch(QApplication& application, RunLoop& runLoop)
{
    const auto life = std::make_shared<int>(0);
    runLoop.performAfterDelay(launchLimit, life, [&] { application.quit(); });
    return QApplication::exec();
}

int run(QApplication& application, bool atLogin)
{
    DesktopPlatform desktop({});
    Platform& platform = desktop.platform();
    const Platform::Scope scope(platform);
    FVEPreferences preferences(*platform.preferences, *platform.distributedNotificationCenter);
    const bool startsServer = atLogin && preferences.currentState() == 1;
    if (startsServer)
        launchServer(platform, ownPane(platform).get());
    SingleInstance instance(desktop.sessionBus(), kFVEMenuExtraBundleID);
    if ((!atLogin || preferences.showInMenuBar()) && becomeTheOne(instance))
        return runStatusItem(application, desktop, instance, preferences);
    return startsServer ? endAfterLaunch(application, *platform.runLoop) : 0;
}

} // namespace

int main(int argc, char** argv)
{
    // Trays of the StatusNotifierItem kind are reached without a display of our own.
    if (!hasDisplay())
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QGuiApplication::setDesktopFileName(QStringLiteral("farview-preferences"));
    QApplication::setQuitOnLastWindowClosed(false);
    const bool atLogin = argc == 2 && std::strcmp(argv[1], kAtLoginArgument) == 0;
    if (argc > 1 && !atLogin) {
        qWarning("usage: FarviewStatusItem [--at-login]");
        return 2;
    }
    return run(application, atLogin);
}
