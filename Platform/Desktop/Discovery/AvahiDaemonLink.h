#pragma once

#include "Platform/Desktop/Bus/BusConnection.h"
#include "Platform/Types/Subscription.h"

#include <QDBusMessage>
#include <QObject>

#include <deque>
#include <functional>
#include <map>
#include <utility>

namespace farview
{

/// The program's connection to the system bus and, on it, to the discovery daemon. Finds both, and
/// finds them again when they went away. Never waits for an answer. Main thread only.
class AvahiDaemonLink : public QObject
{
    Q_OBJECT

public:
    enum class Presence { unknown, present, absent };
    using Answer = BusConnection::Answer;
    using SignalHandler = std::function<void(const QDBusMessage& signal)>;

    explicit AvahiDaemonLink(Log& log);

    /// Looks for the bus if it is not known to be there, and for the daemon on it. The result is in
    /// `presence()`, at the latest after one second each.
    void look() { mBus.connectNow(); }
    Presence presence() const { return mPresence; }
    /// Grows with every daemon that is met: what belongs to an older one has gone.
    unsigned daemonNumber() const { return mDaemonNumber; }

    static QDBusMessage serverCall(const QString& member);
    /// Sends a call to the daemon, as soon as not too many are open; `answer` hears the reply or
    /// the error on a later turn.
    void call(QDBusMessage message, Answer answer);
    /// The same without an interest in the answer.
    void send(QDBusMessage message);
    /// `handler` hears the signals of that object of the daemon, until the handle is destroyed.
    Subscription observeSignals(const QString& path, SignalHandler handler);

    /// Where the system bus is.
    static QString systemBusAddress();

    /// How long the daemon may take to answer at first.
    static constexpr int patience = 1000;

Q_SIGNALS:
    void presenceChanged();

private Q_SLOTS:
    void noticeOwner(const QDBusMessage& message);
    void routeSignal(const QDBusMessage& message);

private:
    void useBus();
    void loseBus();
    void askDaemon();
    void handleDaemonAnswer(const QDBusMessage& reply);
    void meetDaemon(const QString& owner);
    void listenToDaemon();
    void setPresence(Presence presence);
    void sendWaiting();
    void ask(const QDBusMessage& message, const Answer& answer);

    Log& mLog;
    BusConnection mBus;
    QString mOwner;
    Presence mPresence = Presence::unknown;
    unsigned mDaemonNumber = 0;
    unsigned mQuestion = 0;
    std::map<QString, SignalHandler> mHandlers;
    std::deque<std::pair<QDBusMessage, Answer>> mWaiting;
    int mOpenCalls = 0;
};

} // namespace farview
