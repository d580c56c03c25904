#include "Platform/Desktop/Discovery/AvahiDaemonLink.h"

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>

#include <utility>

namespace farview
{
namespace
{

constexpr Duration firstPause{0.1};
constexpr Duration longestPause{5.0};

constexpr int callLimit = 10'000;
/// A bus allows each connection 128 calls without a reply.
constexpr int mostOpenCalls = 100;

const QString busName = QStringLiteral("org.freedesktop.DBus");
const QString daemonName = QStringLiteral("org.freedesktop.Avahi");
const QString serverInterface = QStringLiteral("org.freedesktop.Avahi.Server2");

/// Connections are named process-wide, but host and pane have one each, and a dead one cannot be
/// used again.
QString freshConnectionName()
{
    static unsigned count = 0;
    return QStringLiteral("farview-system-%1-%2").arg(quintptr(&count), 0, 16).arg(++count);
}

} // namespace

AvahiDaemonLink::AvahiDaemonLink(Log& log) : mLog(log), mPause(firstPause, longestPause)
{
    mRetry.setSingleShot(true);
    connect(&mRetry, &QTimer::timeout, this, &AvahiDaemonLink::tryToConnect);
}

AvahiDaemonLink::~AvahiDaemonLink() { closeConnection(); }

QString AvahiDaemonLink::systemBusAddress()
{
    const QString stated = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
    return stated.isEmpty() ? QStringLiteral("unix:path=/run/dbus/system_bus_socket") : stated;
}

void AvahiDaemonLink::look()
{
    if (!mConnection && !mBusCheck)
        tryToConnect();
}

void AvahiDaemonLink::tryToConnect()
{
    mRetry.stop();
    // The library's way onto a bus waits for it; one that stopped would hold the window.
    mBusCheck = std::make_unique<BusCheck>(systemBusAddress().toStdString(),
                                           std::chrono::milliseconds(patience),
                                           [this](BusAnswer answer) { handleBusAnswer(answer); });
}

void AvahiDaemonLink::handleBusAnswer(BusAnswer answer)
{
    // It is still telling.
    mBusCheck.release()->deleteLater();
    if (answer == BusAnswer::answers && openConnection()) {
        mPause.reset();
        askDaemon();
        return;
    }
    closeConnection();
    setPresence(Presence::absent);
    mRetry.start(static_cast<int>(mPause.next().count() * 1000));
}

bool AvahiDaemonLink::openConnection()
{
    mConnection = QDBusConnection::connectToBus(systemBusAddress(), freshConnectionName());
    // No service is named here: Qt would ask the bus for its owner and wait for the answer.
    return mConnection->isConnected() &&
           mConnection->connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                QStringLiteral("org.freedesktop.DBus.Local"),
                                QStringLiteral("Disconnected"), this,
                                SLOT(noticeDisconnection())) &&
           mConnection->connect(QString(), QStringLiteral("/org/freedesktop/DBus"), busName,
                                QStringLiteral("NameOwnerChanged"), QStringList{daemonName},
                                QString(), this, SLOT(noticeOwner(QDBusMessage)));
}

void AvahiDaemonLink::closeConnection()
{
    if (!mConnection)
        return;
    const QString name = mConnection->name();
    mConnection.reset();
    QDBusConnection::disconnectFromBus(name);
}

void AvahiDaemonLink::noticeDisconnection()
{
    // A connection that we closed ourselves may still have this call queued.
    if (!mConnection || mConnection->isConnected())
        return;
    mLog.write(LogLevel::warning, "The system bus has gone");
    closeConnection();
    mOwner.clear();
    setPresence(Presence::absent);
    mRetry.start(static_cast<int>(mPause.next().count() * 1000));
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
    const auto call = QDBusMessage::createMethodCall(daemonName, QStringLiteral("/"),
                                                     serverInterface, QStringLiteral("GetState"));
    auto* watcher = new QDBusPendingCallWatcher(mConnection->asyncCall(call, patience), this);
    const unsigned question = ++mQuestion;
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, question] {
        watcher->deleteLater();
        handleDaemonAnswer(watcher->reply(), question);
    });
}

void AvahiDaemonLink::handleDaemonAnswer(const QDBusMessage& reply, unsigned question)
{
    if (question != mQuestion || !mConnection)
        return;
    if (reply.type() == QDBusMessage::ReplyMessage)
        meetDaemon(reply.service());
    else
        setPresence(Presence::absent);
}

void AvahiDaemonLink::meetDaemon(const QString& owner)
{
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
        mConnection->connect(mOwner, QString(), QLatin1String(interface), QString(), this,
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
    const auto connection = mConnection ? *mConnection : QDBusConnection(QString());
    auto* watcher = new QDBusPendingCallWatcher(connection.asyncCall(message, callLimit), this);
    ++mOpenCalls;
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, answer] {
        watcher->deleteLater();
        --mOpenCalls;
        sendWaiting();
        answer(watcher->reply());
    });
}

void AvahiDaemonLink::send(QDBusMessage message)
{
    message.setAutoStartService(false);
    if (mConnection)
        mConnection->send(message);
}

Subscription AvahiDaemonLink::observeSignals(const QString& path, SignalHandler handler)
{
    mHandlers[path] = std::move(handler);
    return Subscription([this, path] { mHandlers.erase(path); });
}

} // namespace farview
