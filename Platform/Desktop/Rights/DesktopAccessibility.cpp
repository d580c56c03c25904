#include "Platform/Desktop/Rights/DesktopAccessibility.h"

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Posix/Environment.h"

#include <QDBusVariant>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

constexpr int patience = 1000; // milliseconds

bool letsProgramsMoveWindows(const QString& desktop)
{
    static const QStringList known = {"kde",   "sway",  "wlroots", "wayfire",
                                      "labwc", "river", "hikari",  "hyprland"};
    return known.contains(desktop.toLower());
}

bool isAlwaysEnabled()
{
    const auto desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':');
    return isX11Session() || std::any_of(desktops.begin(), desktops.end(), letsProgramsMoveWindows);
}

QDBusMessage settingCall()
{
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << QStringLiteral("org.a11y.Status") << QStringLiteral("IsEnabled");
    // Where the accessibility bus does not run, asking is no reason to start it.
    call.setAutoStartService(false);
    return call;
}

} // namespace

void DesktopAccessibility::askWhetherEnabled(std::weak_ptr<void> asker,
                                             std::function<void(bool isEnabled)> answer)
{
    if (isAlwaysEnabled())
        return answer(true);
    mBus.ask(
        settingCall(), this,
        [asker = std::move(asker), answer = std::move(answer)](const QDBusMessage& reply) {
            if (!asker.expired())
                answer(reply.signature() == u"v" &&
                       reply.arguments().at(0).value<QDBusVariant>().variant().toBool());
        },
        patience);
}

} // namespace farview
