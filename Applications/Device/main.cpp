#include "Applications/Device/AwakeScreen.h"
#include "Applications/Device/DeviceArguments.h"
#include "Applications/Device/DeviceCommands.h"
#include "Applications/Device/DeviceNames.h"
#include "Applications/Device/DeviceServer.h"
#include "Applications/Device/DeviceWindow.h"
#include "Applications/Device/OtherDevices.h"
#include "Applications/Device/PairingConsole.h"
#include "Applications/Device/PictureFile.h"
#include "Applications/TerminationSignals.h"
#include "Common/FVEDistributedNotifications.h"
#include "Controls/Qt/DesktopLook.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/DesktopPlatform.h"
#include "Platform/Desktop/Discovery/DesktopNetServicePublisher.h"
#include "Platform/Desktop/Looks/AppearancePortal.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Posix/Languages.h"
#include "Platform/Posix/Settings/MachineIdentifier.h"

#include <QApplication>
#include <QSysInfo>

#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <unistd.h>

namespace
{

using namespace farview;

constexpr int noPort = 3;

/// Whether there is a display to show a window on.
bool hasDisplay()
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

/// Desktops on X11 have no on-screen keyboard that Qt knows how to open. Its own is used where it
/// is installed; where it is not, this changes nothing.
void preferOwnKeyboard()
{
    if (!qEnvironmentVariableIsSet("QT_IM_MODULE") && !qEnvironmentVariableIsSet("WAYLAND_DISPLAY"))
        qputenv("QT_IM_MODULE", "qtvirtualkeyboard");
}

DeviceSettings settingsFor(const DeviceArguments& arguments)
{
    const std::string computer = QSysInfo::machineHostName().toStdString();
    DeviceSettings settings;
    settings.name = arguments.name.value_or(readableDeviceName(computer));
    settings.hostName = arguments.hostName.value_or(
        ownDeviceHostName(computer, machineIdentifier(), settings.name));
    settings.port = arguments.port;
    settings.refusal = arguments.refusal;
    settings.keyPath = ownKeyPath(PairedPeers::computers);
    settings.pairsOnce = arguments.pairsOnce;
    return settings;
}

/// The program from here to its end: perhaps looks whether it is needed, then serves.
class DeviceProgram
{
public:
    DeviceProgram(const DeviceArguments& arguments, bool hasWindow)
        : mArguments(arguments), mHasWindow(hasWindow), mPlatform(mDesktop.platform())
    {
    }

    void begin()
    {
        if (mArguments.unlessSeenWithin)
            lookForOthers();
        else
            serve();
    }
    void quit()
    {
        if (mServer)
            mServer->stop([] { QCoreApplication::quit(); });
        else
            QCoreApplication::quit();
    }

private:
    void lookForOthers()
    {
        const auto seen = [](const std::string& name) {
            std::printf("There is a device already: %s\n",
                        plainLinkText(name, kLinkTextLimit).c_str());
            QCoreApplication::quit();
        };
        mOthers = std::make_shared<OtherDevices>(*mPlatform.discovery, *mPlatform.runLoop);
        mOthers->look(Duration(*mArguments.unlessSeenWithin), seen, [this] { serve(); });
    }
    void serve()
    {
        if (mHasWindow)
            makeWindow();
        if (mArguments.pictureFile)
            mFile = std::make_unique<PictureFile>(QString::fromStdString(*mArguments.pictureFile),
                                                  *mPlatform.log);
        Glass* const glass = mFile ? static_cast<Glass*>(mFile.get()) : mWindow.get();
        mServer = std::make_shared<DeviceServer>(settingsFor(mArguments), mPublisher, mPlatform,
                                                 LinkTimes{}, glass);
        if (mHasWindow)
            showWindow();
        else
            askByText();
        followCommands();
        if (!mServer->start()) {
            mPlatform.log->write(LogLevel::error, "There is no port to listen on");
            QCoreApplication::exit(noPort);
        }
    }
    void makeWindow()
    {
        mPortal.emplace(mDesktop.sessionBus().connection(),
                        [this](const AppearancePreferences& wanted) { mLook.follow(wanted); });
        mWindow = std::make_unique<DeviceWindow>(
            mTexts,
            DeviceWindow::Actions{[this] { quit(); }, [this] { mServer->sendHostAway(); },
                                  [this](bool isShown) { mAwake.keep(isShown); },
                                  [this](const auto& digits) { mServer->acceptDigits(digits); },
                                  [this] { mServer->refuseComputer(); },
                                  [this](const auto& key) { mServer->forgetComputer(key); }},
            mArguments.isInWindow ? DeviceWindow::First::staysInWindow
                                  : DeviceWindow::First::fillsScreen);
    }
    void showWindow()
    {
        mServer->setObserver([this] { mWindow->showStatus(mServer->status()); });
        mWindow->showStatus(mServer->status());
        mWindow->show();
    }
    void askByText()
    {
        const auto say = [](const std::string& line) {
            std::printf("%s\n", line.c_str());
            std::fflush(stdout);
        };
        mConsole = std::make_unique<PairingConsole>(
            STDIN_FILENO, PairingConsole::Actions{
                              [this](const auto& digits) { return mServer->acceptDigits(digits); },
                              [this] { mServer->refuseComputer(); }, say});
        mServer->setObserver([this] { mConsole->showStatus(mServer->status()); });
    }
    /// From `--accept` and `--forget`, for example in a shell on a device whose window nobody can
    /// reach.
    void followCommands()
    {
        const auto accept = [this](const Notification& asked) {
            const std::string* digits = asked.text(kDigitsKey);
            if (digits && mServer->acceptDigits(*digits))
                mPlatform.distributedNotificationCenter->postNotificationName(
                    kComputerAccepted, "", {{kDigitsKey, *digits}},
                    DistributedNotificationCenter::deliverImmediately |
                        DistributedNotificationCenter::postToAllSessions);
        };
        const auto changed = [this](const Notification&) { mServer->computersChanged(); };
        mPlatform.distributedNotificationCenter->addObserver(mLife, accept, kAcceptComputer, "");
        mPlatform.distributedNotificationCenter->addObserver(mLife, changed,
                                                             kPairedDevicesDidChange, "");
    }

    DeviceArguments mArguments;
    bool mHasWindow;
    DesktopPlatform mDesktop{{}};
    Platform& mPlatform;
    DesktopLook mLook;
    std::optional<AppearancePortal> mPortal;
    DesktopNetServicePublisher mPublisher{*mPlatform.log};
    std::shared_ptr<OtherDevices> mOthers;
    DeviceTexts mTexts{preferredLanguages(Environment(EnvironmentUse::honoured))};
    AwakeScreen mAwake{mDesktop.sessionBus(), mTexts.text("Shows the picture of another computer")};
    std::unique_ptr<DeviceWindow> mWindow;
    std::unique_ptr<PictureFile> mFile;
    std::shared_ptr<DeviceServer> mServer;
    std::unique_ptr<PairingConsole> mConsole;
    std::shared_ptr<int> mLife = std::make_shared<int>(); ///< what is heard ends with it
};

int run(const DeviceArguments& arguments, bool hasWindow)
{
    DeviceProgram program(arguments, hasWindow);
    const TerminationSignals termination([&] { program.quit(); });
    program.begin();
    return QCoreApplication::exec();
}

/// What the program does instead of being a device: the status that it ends with.
std::optional<int> runCommand(const DeviceArguments& arguments, int& argc, char** argv)
{
    if (arguments.answer)
        return print(*arguments.answer);
    if (arguments.listsKnown)
        return listKnownComputers();
    if (!arguments.acceptedDigits && !arguments.forgottenKey)
        return std::nullopt;
    const QCoreApplication application(argc, argv);
    return arguments.acceptedDigits ? acceptDigits(*arguments.acceptedDigits)
                                    : forgetComputer(*arguments.forgottenKey);
}

/// A standard input that is closed would be the next file that is opened, and be read from.
void keepStandardInput()
{
    if (::fcntl(STDIN_FILENO, F_GETFD) < 0)
        ::open("/dev/null", O_RDONLY);
}

} // namespace

int main(int argc, char** argv)
{
    keepStandardInput();
    const DeviceArguments arguments = readDeviceArguments(CommandLine::words(argc, argv));
    if (const auto status = runCommand(arguments, argc, argv))
        return *status;
    if (arguments.isHeadless || !hasDisplay()) {
        const QCoreApplication application(argc, argv);
        return run(arguments, false);
    }
    preferOwnKeyboard();
    const QApplication application(argc, argv);
    // The goodbye comes before the end.
    QApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setDesktopFileName(QStringLiteral("farview-device"));
    return run(arguments, true);
}
