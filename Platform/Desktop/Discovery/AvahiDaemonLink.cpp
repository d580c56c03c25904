#include "Platform/Desktop/Discovery/AvahiDaemonLink.h"

#include <utility>

namespace farview
{
namespace
{

constexpr Duration longestPause{5.0};

constexpr int callLimit = 10'000;
/// A bus allows each connection 128 calls without a reply.
constexpr int mostOpenCalls = 100;

const QString busName = QStringLiteral("org.freedesktop.DBus");
const QString daemonName = QStringLiteral("org.freedesktop.Avahi");
const QString serverInterface = QStringLiteral("org.freedesktop.Avahi.Server2");

} // namespace

AvahiDaemonLink::AvahiDaemonLink(Log& log)
    : mLog(log),
      mBus(log, {"system", systemBusAddress, BusConnection::Owner::anybody, longestPause, patience})
{
    connect(&mBus, &BusConnection::connected, this, &AvahiDaemonLink::useBus);
    connect(&mBus, &BusConnection::disconnected, this, &AvahiDaemonLink::loseBus);
}

QString AvahiDaemonLink::systemBusAddress()
{
    const QString stated = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
    return stated.isEmpty() ? QStringLiteral("unix:path=/run/dbus/system_bus_socket") : stated;
}

void AvahiDaemonLink::useBus()
{
    // No service is named here: Qt would ask the bus for its owner and wait for the answer.
    mBus.connection().connect(QString(), QStringLiteral("/org/freedesktop/DBus"), busName,
                              QStringLiteral("NameOwnerChanged"), QStringList{daemonName},
                              QString(), this, SLOT(noticeOwner(QDBusMessage)));
    askDaemon();
}

void AvahiDaemonLink::loseBus()
{
    mOwner.clear();
    setPresence(Presence::absent);
}

void AvahiDaemonLink::noticeOwner(const QDBusMessage& message)
{
    if (message.service() != busName || message.signature() != QLatin1String("sss"))
        return;
    const QString owner = message.arguments().at(2).toString();
    if (owner == mOwner)
        return;
    if (!std::exchange(mOwner, QString()).isEmpty()) {
        mLog.write(LogLevel::warning, "The discovery daemon has gone");
        setPresence(Presence::absent);
    }
    if (!owner.isEmpty())
        askDaemon();
}

void AvahiDaemonLink::askDaemon()
{
    mBus.ask(
        serverCall(QStringLiteral("GetState")), this,
        [this, question = ++mQuestion](const QDBusMessage& reply) {
            if (question == mQuestion && mBus.isConnected())
                handleDaemonAnswer(reply);
        },
        patience);
}

void AvahiDaemonLink::handleDaemonAnswer(const QDBusMessage& reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage)
        return setPresence(Presence::absent);
    mBus.askForOwner(daemonName, this, [this, question = mQuestion](const QString& owner) {
        if (question == mQuestion && mBus.isConnected())
            meetDaemon(owner);
    });
}

void AvahiDaemonLink::meetDaemon(const QString& owner)
{
    if (owner.isEmpty())
        return setPresence(Presence::absent);
    mOwner = owner;
    ++mDaemonNumber;
    listenToDaemon();
    setPresence(Presence::present);
}

/// Before anything is created there: a signal may come at once. The daemon's own name on the bus
/// keeps everybody else's signals out.
void AvahiDaemonLink::listenToDaemon()
{
    for (const char* interface :
         {"org.freedesktop.Avahi.ServiceBrowser", "org.freedesktop.Avahi.RecordBrowser",
          "org.freedesktop.Avahi.EntryGroup"})
        mBus.connection().connect(mOwner, QString(), QLatin1String(interface), QString(), this,
                                  SLOT(routeSignal(QDBusMessage)));
}

void AvahiDaemonLink::routeSignal(const QDBusMessage& message)
{
    const auto found = mHandlers.find(message.path());
    if (found == mHandlers.end() || message.service() != mOwner)
        return;
    const auto handler = found->second;
    handler(message);
}

void AvahiDaemonLink::setPresence(Presence presence)
{
    if (std::exchange(mPresence, presence) != presence)
        Q_EMIT presenceChanged();
}

QDBusMessage AvahiDaemonLink::serverCall(const QString& member)
{
    return QDBusMessage::createMethodCall(daemonName, QStringLiteral("/"), serverInterface, member);
}

void AvahiDaemonLink::call(QDBusMessage message, Answer answer)
{
    message.setAutoStartService(false);
    mWaiting.emplace_back(std::move(message), std::move(answer));
    sendWaiting();
}

void AvahiDaemonLink::sendWaiting()
{
    while (mOpenCalls < mostOpenCalls && !mWaiting.empty()) {
        const auto [message, answer] = std::move(mWaiting.front());
        mWaiting.pop_front();
        ask(message, answer);
    }
}

void AvahiDaemonLink::ask(const QDBusMessage& message, const Answer& answer)
{
    ++mOpenCalls;
    mBus.ask(
        message, this,
        [this, answer](const QDBusMessage& reply) {
            --mOpenCalls;
            sendWaiting();
            answer(reply);
        },
        callLimit);
}

void AvahiDaemonLink::send(QDBusMessage message)
{
    message.setAutoStartService(false);
    mBus.send(message);
}

Subscription AvahiDaemonLink::observeSignals(const QString& path, SignalHandler handler)
{
    mHandlers[path] = std::move(handler);
    return Subscription([this, path] { mHandlers.erase(path); });
}

} // namespace farview
