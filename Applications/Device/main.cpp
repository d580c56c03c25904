#include "Applications/Device/AwakeScreen.h"
#include "Applications/Device/DeviceArguments.h"
#include "Applications/Device/DeviceNames.h"
#include "Applications/Device/DeviceServer.h"
#include "Applications/Device/DeviceWindow.h"
#include "Applications/Device/OtherDevices.h"
#include "Applications/Device/PictureFile.h"
#include "Applications/TerminationSignals.h"
#include "Controls/Qt/DesktopLook.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/DesktopPlatform.h"
#include "Platform/Desktop/Discovery/DesktopNetServicePublisher.h"
#include "Platform/Desktop/Looks/AppearancePortal.h"
#include "Platform/Posix/Languages.h"
#include "Platform/Posix/Settings/MachineIdentifier.h"

#include <QApplication>
#include <QSysInfo>

#include <cstdio>
#include <memory>

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
                                  [this](bool isShown) { mAwake.keep(isShown); }},
            mArguments.isInWindow ? DeviceWindow::First::staysInWindow
                                  : DeviceWindow::First::fillsScreen);
    }
    void showWindow()
    {
        mServer->setObserver([this] { mWindow->showStatus(mServer->status()); });
        mWindow->showStatus(mServer->status());
        mWindow->show();
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
};

int run(const DeviceArguments& arguments, bool hasWindow)
{
    DeviceProgram program(arguments, hasWindow);
    const TerminationSignals termination([&] { program.quit(); });
    program.begin();
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    const DeviceArguments arguments = readDeviceArguments(CommandLine::words(argc, argv));
    if (arguments.answer)
        return print(*arguments.answer);
    if (arguments.isHeadless || !hasDisplay()) {
        const QCoreApplication application(argc, argv);
        return run(arguments, false);
    }
    const QApplication application(argc, argv);
    // The goodbye comes before the end.
    QApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setDesktopFileName(QStringLiteral("farview-device"));
    return run(arguments, true);
}
