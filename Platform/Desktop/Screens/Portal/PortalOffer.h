#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/VirtualScreens.h"

#include <QString>

#include <functional>
#include <optional>

namespace farview
{

/// What the desktop's portal offers programs that want to show a screen and to control it. The
/// masks are as its interfaces define them.
struct PortalOffer {
    std::optional<ScreenObstacle> obstacle = {}; ///< then there is nothing else
    QString owner = {};                          ///< the portal's own name on the bus
    unsigned screenCast = 0;                     ///< the version of that interface
    unsigned sources = 0;
    unsigned cursorModes = 0;
    unsigned remoteDesktop = 0; ///< the same; 0: the portal has no such interface
    unsigned devices = 0;
};

/// What is asked of the portal.
struct PortalPlan {
    unsigned source = 0;         ///< 0: it has none for us
    bool isMirror = false;       ///< a screen of the user's own is shown
    unsigned cursorMode = 0;     ///< 0: as the portal likes
    bool isPointerApart = false; ///< from the frames
    unsigned devices = 0;        ///< 0: a session without input
    bool remembers = false;      ///< what the user allows may last

    bool operator==(const PortalPlan&) const = default;
};

/// A monitor of our own is better than one of the user's.
PortalPlan portalPlan(const PortalOffer& offer, bool wantsInput);

ScreenAvailability availabilityOf(const PortalOffer& offer);

/// Asks for it, and starts the portal where it does not run yet. `then` is called on a later turn,
/// unless `asker` is gone by then.
void askPortal(SessionBus& bus, QObject* asker, std::function<void(const PortalOffer&)> then);

/// A call to the portal itself.
QDBusMessage portalCall(const QString& interface, const char* member);

inline const QString portalScreenCast = QStringLiteral("org.freedesktop.portal.ScreenCast");
inline const QString portalRemoteDesktop = QStringLiteral("org.freedesktop.portal.RemoteDesktop");

} // namespace farview
