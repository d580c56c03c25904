#include "Platform/Desktop/Screens/Portal/PortalOffer.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QVariantMap>

#include <utility>

namespace farview
{
namespace
{

// As the portal's interfaces number them.
enum Source : unsigned { existingMonitor = 1, virtualMonitor = 4 };
enum CursorMode : unsigned { embedded = 2, apart = 4 };
constexpr unsigned keyboardPointerTouch = 1 | 2 | 4;
constexpr unsigned firstLastingScreenCast = 4;
constexpr unsigned firstLastingRemoteDesktop = 2;

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");

/// Until the portal has come up, and all that it asks for its part.
constexpr int patience = 30'000; // milliseconds

ScreenObstacle obstacleOf(const QDBusMessage& reply)
{
    switch (QDBusError(reply).type()) {
    case QDBusError::Disconnected:
        return ScreenObstacle::noDesktop;
    case QDBusError::AccessDenied:
        return ScreenObstacle::notPermitted;
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return ScreenObstacle::failed;
    default:
        return ScreenObstacle::protocolMissing;
    }
}

unsigned preferred(unsigned first, unsigned second, unsigned offered)
{
    return offered & first ? first : offered & second;
}

/// Empty when the interface is not there.
QVariantMap propertiesIn(const QDBusMessage& reply)
{
    return reply.signature() == u"a{sv}" ? qdbus_cast<QVariantMap>(reply.arguments().at(0))
                                         : QVariantMap();
}

unsigned number(const QVariantMap& properties, const char* name)
{
    return properties.value(QLatin1String(name)).toUInt();
}

void askForProperties(SessionBus& bus, QObject* asker, const QString& interface,
                      BusConnection::Answer then)
{
    auto call = portalCall(QStringLiteral("org.freedesktop.DBus.Properties"), "GetAll");
    bus.ask(call << interface, asker, std::move(then), patience);
}

} // namespace

PortalPlan portalPlan(const PortalOffer& offer, bool wantsInput)
{
    PortalPlan plan;
    plan.source = preferred(virtualMonitor, existingMonitor, offer.sources);
    plan.isMirror = plan.source == existingMonitor;
    plan.cursorMode = preferred(apart, embedded, offer.cursorModes);
    plan.isPointerApart = plan.cursorMode == apart;
    plan.devices = wantsInput && offer.remoteDesktop > 0 ? offer.devices & keyboardPointerTouch : 0;
    plan.remembers = plan.devices ? offer.remoteDesktop >= firstLastingRemoteDesktop
                                  : offer.screenCast >= firstLastingScreenCast;
    return plan;
}

ScreenAvailability availabilityOf(const PortalOffer& offer)
{
    const auto plan = portalPlan(offer, false);
    if (offer.obstacle || !plan.source)
        return {std::nullopt, offer.obstacle.value_or(ScreenObstacle::protocolMissing)};
    return {plan.isMirror ? ScreenWay::existingScreen : ScreenWay::portal, {}};
}

QDBusMessage portalCall(const QString& interface, const char* member)
{
    return QDBusMessage::createMethodCall(portal, QStringLiteral("/org/freedesktop/portal/desktop"),
                                          interface, QLatin1String(member));
}

void askPortal(SessionBus& bus, QObject* asker, std::function<void(const PortalOffer&)> then)
{
    const auto takeScreenCast = [=, &bus](const QDBusMessage& reply) {
        const auto cast = propertiesIn(reply);
        PortalOffer offer{.screenCast = number(cast, "version"),
                          .sources = number(cast, "AvailableSourceTypes"),
                          .cursorModes = number(cast, "AvailableCursorModes")};
        if (reply.type() == QDBusMessage::ErrorMessage)
            offer.obstacle = obstacleOf(reply);
        if (offer.obstacle)
            return then(offer);
        askForProperties(bus, asker, portalRemoteDesktop,
                         [=, &bus](const QDBusMessage& remoteReply) mutable {
                             const auto remote = propertiesIn(remoteReply);
                             offer.remoteDesktop = number(remote, "version");
                             offer.devices = number(remote, "AvailableDeviceTypes");
                             bus.askForOwner(portal, asker, [=](const QString& owner) mutable {
                                 offer.owner = owner;
                                 then(offer);
                             });
                         });
    };
    askForProperties(bus, asker, portalScreenCast, takeScreenCast);
}

} // namespace farview
