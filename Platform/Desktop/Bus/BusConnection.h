#pragma once

#include "Platform/Desktop/Bus/BusHandshake.h"
#include "Platform/Desktop/Bus/GrowingPause.h"
#include "Platform/Log.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// A connection to a message bus. It makes itself again, with growing pauses, when the bus comes
/// late or comes back after a loss. Never waits for an answer. Main thread only; the application
/// object must exist.
class BusConnection : public QObject
{
    Q_OBJECT

public:
    enum class Owner { anybody, thisUser };
    struct Place {
        std::string name; ///< for the log: "session"
        QString (*address)();
        Owner owner; ///< a bus that runs as somebody else is not used
        Duration longestPause;
        int patience; ///< how long the bus may take to answer, in milliseconds
    };
    using Answer = std::function<void(const QDBusMessage& reply)>;

    BusConnection(Log& log, Place place);
    ~BusConnection() override;

    /// Looks for the bus now, unless it is there or being looked for. The result comes by a signal,
    /// on a later turn.
    void connectNow();
    bool isConnected() const { return mState == State::connected; }
    /// The connection of the moment; an unconnected one while there is no bus. Never keep it beyond
    /// `disconnected()`.
    QDBusConnection connection() const;

    /// Sends a call; `answer` hears the reply or the error on a later turn, unless `asker` is gone
    /// by then. Until the first attempt to connect is over, calls wait for its end. `limit` is in
    /// milliseconds.
    void ask(const QDBusMessage& message, QObject* asker, Answer answer, int limit = 5000);
    /// Asks for the unique name of whoever has that name, which keeps others' signals out; empty
    /// when nobody has it, or there is no bus. Answers tell their sender only where Qt is old.
    void askForOwner(const QString& name, QObject* asker,
                     std::function<void(const QString& owner)> then);
    /// The same as `ask` for a signal, or a call whose answer is of no interest. Lost while there
    /// is no bus.
    void send(const QDBusMessage& message);

    /// A call to the bus itself.
    static QDBusMessage busCall(const QString& member);

Q_SIGNALS:
    /// `again`: the bus had been missing before. What waited is sent after this.
    void connected(bool again);
    /// The bus has gone, or the first attempt to reach it failed.
    void disconnected();

private Q_SLOTS:
    void noticeDisconnection();

private:
    enum class State { unknown, connected, absent };

    void handleCheck(BusAnswer answer);
    bool open();
    void close();
    void checkOwner();
    void useOwner(const QDBusMessage& reply);
    void succeed();
    void fail();
    void retryLater();
    void settle(State state);

    Log& mLog;
    Place mPlace;
    State mState = State::unknown;
    std::unique_ptr<BusCheck> mCheck;
    std::optional<QDBusConnection> mConnection; ///< of which the owner may not be known yet
    std::vector<std::function<void()>> mWaiting;
    QTimer mRetry;
    GrowingPause mPause;
};

} // namespace farview
