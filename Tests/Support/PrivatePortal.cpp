#include "Tests/Support/PrivatePortal.h"

#include "Tests/Support/WaitUntil.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace
{

constexpr auto limit = std::chrono::seconds(30);

void require(bool isThere, const char* what)
{
    if (!isThere)
        throw std::runtime_error(std::string("no ") + what);
}

} // namespace

PrivatePortal::PrivatePortal(const std::vector<std::string>& monitors) : mSway(monitors)
{
    mFolder.write("xdg-desktop-portal-wlr/config",
                  "[screencast]\nchooser_type=simple\nchooser_cmd=echo asked >>" +
                      mFolder.path("questions") + " && cat " + mFolder.path("answer") + "\n");
    setAnswer("HEADLESS-1");
    mPipeWire = start("pipewire");
    const std::string socket = std::string(std::getenv("XDG_RUNTIME_DIR")) + "/pipewire-0";
    require(waitUntil([&] { return std::filesystem::exists(socket); }, limit), "PipeWire");
    mSessionManager = start("wireplumber");
    mPermissions = start("/usr/libexec/xdg-permission-store");
    require(comesToHaveOwner("org.freedesktop.impl.portal.PermissionStore"), "permissions");
    mPortalOfSway =
        start("env LD_PRELOAD=" FARVIEW_SHARED_MEMORY_ONLY " /usr/libexec/xdg-desktop-portal-wlr");
    require(comesToHaveOwner("org.freedesktop.impl.portal.desktop.wlr"), "portal of sway");
    mPortal = start("/usr/libexec/xdg-desktop-portal");
    require(comesToHaveOwner("org.freedesktop.portal.Desktop"), "portal");
}

std::unique_ptr<ChildProcess> PrivatePortal::start(const std::string& program)
{
    const auto log = mFolder.path(program.substr(program.rfind('/') + 1) + ".log");
    return std::make_unique<ChildProcess>(
        std::vector<std::string>{"sh", "-c", "exec " + program + " >'" + log + "' 2>&1"});
}

void PrivatePortal::setAnswer(const std::string& monitor) { mFolder.write("answer", monitor); }

int PrivatePortal::questions() const
{
    std::ifstream file(mFolder.path("questions"));
    return static_cast<int>(std::count(std::istreambuf_iterator(file), {}, '\n'));
}

bool PrivatePortal::comesToHaveOwner(const char* name)
{
    const auto connectionName = QStringLiteral("portal-watcher");
    const auto connection =
        QDBusConnection::connectToBus(QString::fromStdString(mBus.address()), connectionName);
    const bool hasOwner = waitUntil(
        [&] { return connection.interface()->isServiceRegistered(QLatin1String(name)); }, limit);
    QDBusConnection::disconnectFromBus(connectionName);
    return hasOwner;
}
