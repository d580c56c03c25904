#pragma once

#include "Platform/Desktop/Bus/BusConnection.h"

#include <functional>
#include <string>

namespace farview
{

/// The program's one connection to the user's session bus, and what is asked of the bus itself.
/// Looks for the bus at once.
///
/// A bus that runs as another user is refused: what it says about senders cannot be trusted. Main
/// thread only; the application object must exist.
class SessionBus : public BusConnection
{
public:
    explicit SessionBus(Log& log);

    /// Our unique name on the bus (":1.5"); empty while there is no bus.
    QString uniqueName() const { return connection().baseService(); }

    /// Asks for a well-known name, without waiting in the bus's queue for it. `then` hears whether
    /// it is ours now, on a later turn and unless `asker` is gone by then.
    void requestName(const std::string& name, QObject* asker,
                     std::function<void(bool isOurs)> then);
    void releaseName(const std::string& name);
    /// Where the session bus is: DBUS_SESSION_BUS_ADDRESS, else the socket in XDG_RUNTIME_DIR;
    /// empty when neither is known.
    static QString address();
};

} // namespace farview
