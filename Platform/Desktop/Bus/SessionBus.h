#pragma once

#include "Platform/Desktop/Bus/GrowingPause.h"
#include "Platform/Log.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QTimer>

#include <optional>
#include <string>

namespace farview
{

/// The program's one connection to the user's session bus. It connects at once when it can, and
/// again by itself, with growing pauses, when the bus comes late or comes back after a loss.
///
/// A bus that runs as another user is refused: what it says about senders cannot be trusted. Main
/// thread only; the application object must exist.
class SessionBus : public QObject
{
    Q_OBJECT

public:
    explicit SessionBus(Log& log);
    ~SessionBus() override;

    bool isConnected() const { return mConnection.has_value(); }
    /// The connection of the moment; an unconnected one while there is no bus. Never keep it beyond
    /// `disconnected()`.
    QDBusConnection connection() const;
    /// Our unique name on the bus (":1.5"); empty while there is no bus.
    QString uniqueName() const;

    /// Asks for a well-known name, without waiting in the bus's queue for it. True when it is ours
    /// now. Blocks for one round trip.
    bool requestName(const std::string& name);
    void releaseName(const std::string& name);
    /// The unique name of the name's owner; empty when nobody owns it. Blocks for one round trip.
    QString nameOwner(const std::string& name);

    /// Whether a call to that name would find somebody: a running owner, or one that the bus
    /// starts. Blocks for up to two round trips.
    bool canReach(const QString& name);

    /// A call to the bus itself.
    static QDBusMessage busCall(const QString& member);

    /// Where the session bus is: DBUS_SESSION_BUS_ADDRESS, else the socket in XDG_RUNTIME_DIR;
    /// empty when neither is known.
    static QString address();

    /// A connection under that name, for a module that needs no second one when it is lost; who
    /// opens it closes it. Unconnected where there is no bus or it is another user's. Blocks.
    static QDBusConnection open(const QString& name);

    /// The limit of every call that blocks, in milliseconds.
    static constexpr int blockingLimit = 250;

Q_SIGNALS:
    /// `again`: the bus had been missing before.
    void connected(bool again);
    void disconnected();

private Q_SLOTS:
    void noticeDisconnection();

private:
    void tryToConnect();
    bool openConnection();
    bool listenForLoss();
    void closeConnection();
    void retryLater();

    Log& mLog;
    std::optional<QDBusConnection> mConnection;
    QTimer mRetry;
    GrowingPause mPause;
    bool mWasMissing = false;
};

} // namespace farview
