#include "Platform/Desktop/Rights/DesktopAccessibility.h"

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Posix/Environment.h"

#include <QDBusReply>
#include <QDBusVariant>
#include <QStringList>

#include <algorithm>

namespace farview
{
namespace
{

bool letsProgramsMoveWindows(const QString& desktop)
{
    static const QStringList known = {"kde",   "sway",  "wlroots", "wayfire",
                                      "labwc", "river", "hikari",  "hyprland"};
    return known.contains(desktop.toLower());
}

} // namespace

bool DesktopAccessibility::isEnabled() const
{
    const auto desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':');
    return isX11Session() ||
           std::any_of(desktops.begin(), desktops.end(), letsProgramsMoveWindows) || isSettingOn();
}

bool DesktopAccessibility::isSettingOn() const
{
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << QStringLiteral("org.a11y.Status") << QStringLiteral("IsEnabled");
    // Where the accessibility bus does not run, asking is no reason to start it.
    call.setAutoStartService(false);
    const QDBusReply<QDBusVariant> reply =
        mBus.connection().call(call, QDBus::Block, SessionBus::blockingLimit);
    return reply.isValid() && reply.value().variant().toBool();
}

} // namespace farview
