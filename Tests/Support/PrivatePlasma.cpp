#include "Tests/Support/PrivatePlasma.h"

#include "Tests/Support/WaitUntil.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace
{

const QString kConnectionName = QStringLiteral("plasma-watcher");

bool hasOwner(const std::string& address, const char* name)
{
    const auto connection =
        QDBusConnection::connectToBus(QString::fromStdString(address), kConnectionName);
    const bool isThere = connection.isConnected() &&
                         connection.interface()->isServiceRegistered(QLatin1String(name));
    QDBusConnection::disconnectFromBus(kConnectionName);
    return isThere;
}

std::string dataFolders()
{
    const char* folders = std::getenv("XDG_DATA_DIRS");
    return folders ? folders : "/usr/share";
}

} // namespace

PrivatePlasma::PrivatePlasma(int monitors, const std::string& trusted)
    : mDataFolders(mFolder.path("share") + ":" + dataFolders()),
      mFolders("XDG_DATA_DIRS", mDataFolders.c_str())
{
    const auto limit = std::chrono::seconds(30);
    const auto exists = [this](const char* socket) {
        return [path = mFolder.path(socket)] { return std::filesystem::exists(path); };
    };
    // Version 6 looks for desktop files below a menu only.
    mFolder.write(
        "menus/applications.menu",
        "<Menu><Name>Applications</Name><DefaultAppDirs/><Include><All/></Include></Menu>");
    mFolder.write("kxkbrc", "[Layout]\nUse=true\nLayoutList=us,ru\n");
    if (!trusted.empty())
        trust(trusted);
    mPipeWire = start("pipewire");
    if (!waitUntil(exists("pipewire-0"), limit))
        throw std::runtime_error("no PipeWire");
    mSessionManager = start("wireplumber");
    // The installed file may do more than others, which not every machine grants.
    const auto program = mFolder.path("kwin_wayland");
    std::filesystem::copy_file("/usr/bin/kwin_wayland", program);
    mKWin = start(program +
                  " --virtual --no-lockscreen --no-global-shortcuts --no-kactivities "
                  "--socket wayland-test --width 1280 --height 720 --output-count " +
                  std::to_string(monitors));
    if (!waitUntil(exists("wayland-test"), limit) ||
        !waitUntil([this] { return hasOwner(mBus.address(), "org.kde.KWin"); }, limit))
        throw std::runtime_error("no KWin");
}

void PrivatePlasma::trust(const std::string& program)
{
    mFolder.write("share/applications/com.quillon.Test.desktop",
                  "[Desktop Entry]\nType=Application\nName=Test\nNoDisplay=true\nExec=\"" +
                      std::filesystem::canonical(program).string() +
                      "\"\nX-KDE-Wayland-Interfaces=zkde_screencast_unstable_v1,"
                      "org_kde_kwin_fake_input\n");
}

std::unique_ptr<ChildProcess> PrivatePlasma::start(const std::string& command)
{
    const auto program = std::filesystem::path(command.substr(0, command.find(' '))).filename();
    const auto log = mFolder.path(program.string() + ".log");
    return std::make_unique<ChildProcess>(
        std::vector<std::string>{"sh", "-c", "exec " + command + " >'" + log + "' 2>&1"});
}
