#include "Platform/Desktop/Bus/BusConnection.h"

#include <QDBusError>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QPointer>

#include <unistd.h>
#include <utility>

namespace farview
{
namespace
{

const QString busName = QStringLiteral("org.freedesktop.DBus");

constexpr Duration firstPause{0.1};

/// Connections are named process-wide, but host and pane have one each, and a dead one cannot be
/// used again.
QString freshName()
{
    static unsigned count = 0;
    return QStringLiteral("farview-%1-%2").arg(quintptr(&count), 0, 16).arg(++count);
}

QDBusPendingCall failedCall()
{
    return QDBusPendingCall::fromError(
        QDBusError(QDBusError::Disconnected, QStringLiteral("There is no bus")));
}

} // namespace

BusConnection::BusConnection(Log& log, Place place)
    : mLog(log), mPlace(std::move(place)), mPause(firstPause, mPlace.longestPause)
{
    mRetry.setSingleShot(true);
    connect(&mRetry, &QTimer::timeout, this, &BusConnection::connectNow);
}

BusConnection::~BusConnection() { close(); }

QDBusConnection BusConnection::connection() const
{
    return isConnected() ? *mConnection : QDBusConnection(QStringLiteral("farview-no-bus"));
}

void BusConnection::connectNow()
{
    if (mConnection || mCheck)
        return;
    mRetry.stop();
    // The library's way onto a bus waits for it; one that stopped would hold the program.
    mCheck = std::make_unique<BusCheck>(mPlace.address().toStdString(),
                                        std::chrono::milliseconds(mPlace.patience),
                                        [this](BusAnswer answer) { handleCheck(answer); });
}

void BusConnection::handleCheck(BusAnswer answer)
{
    // It is still telling.
    mCheck.release()->deleteLater();
    if (answer != BusAnswer::answers || !open())
        fail();
    else if (mPlace.owner == Owner::thisUser)
        checkOwner();
    else
        succeed();
}

bool BusConnection::open()
{
    mConnection = QDBusConnection::connectToBus(mPlace.address(), freshName());
    return mConnection->isConnected() &&
           mConnection->connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                QStringLiteral("org.freedesktop.DBus.Local"),
                                QStringLiteral("Disconnected"), this, SLOT(noticeDisconnection()));
}

void BusConnection::close()
{
    if (!mConnection)
        return;
    const QString name = mConnection->name();
    mConnection.reset();
    QDBusConnection::disconnectFromBus(name);
}

void BusConnection::checkOwner()
{
    const auto call = busCall(QStringLiteral("GetConnectionUnixUser")) << busName;
    auto* watcher =
        new QDBusPendingCallWatcher(mConnection->asyncCall(call, mPlace.patience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, watcher, asked = mConnection->name()] {
                watcher->deleteLater();
                if (mConnection && mConnection->name() == asked)
                    useOwner(watcher->reply());
            });
}

void BusConnection::useOwner(const QDBusMessage& reply)
{
    const bool isKnown = reply.signature() == u"u";
    if (isKnown && reply.arguments().at(0).toUInt() == ::geteuid())
        return succeed();
    mLog.write(LogLevel::warning, "The " + mPlace.name +
                                      (isKnown ? " bus does not run as this user; not using it"
                                               : " bus does not say who runs it; not using it"));
    fail();
}

void BusConnection::succeed()
{
    mPause.reset();
    settle(State::connected);
}

void BusConnection::fail()
{
    close();
    if (mState == State::unknown && mPlace.address().isEmpty())
        mLog.write(LogLevel::warning, "No " + mPlace.name + " bus: its address is not known");
    retryLater();
    settle(State::absent);
}

void BusConnection::noticeDisconnection()
{
    // A connection that we closed ourselves may still have this call queued.
    if (!mConnection || mConnection->isConnected())
        return;
    mLog.write(LogLevel::warning, "The " + mPlace.name + " bus has gone");
    fail();
}

void BusConnection::retryLater()
{
    // Where no address is known, none will be: a process's environment does not change by itself.
    if (!mPlace.address().isEmpty())
        mRetry.start(static_cast<int>(mPause.next().count() * 1000));
}

void BusConnection::settle(State state)
{
    const State before = std::exchange(mState, state);
    if (before == state)
        return;
    if (state == State::connected)
        Q_EMIT connected(before == State::absent);
    else
        Q_EMIT disconnected();
    for (const auto& waiting : std::exchange(mWaiting, {}))
        waiting();
}

void BusConnection::ask(const QDBusMessage& message, QObject* asker, Answer answer, int limit)
{
    if (mState == State::unknown) {
        mWaiting.push_back([=, this, asker = QPointer(asker)] {
            if (asker)
                ask(message, asker, answer, limit);
        });
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(
        isConnected() ? mConnection->asyncCall(message, limit) : failedCall(), asker);
    connect(watcher, &QDBusPendingCallWatcher::finished, asker,
            [watcher, answer = std::move(answer)] {
                watcher->deleteLater();
                answer(watcher->reply());
            });
}

void BusConnection::askForOwner(const QString& name, QObject* asker,
                                std::function<void(const QString& owner)> then)
{
    ask(busCall(QStringLiteral("GetNameOwner")) << name, asker,
        [then = std::move(then)](const QDBusMessage& reply) {
            const bool hasOwner = reply.type() == QDBusMessage::ReplyMessage;
            then(hasOwner ? reply.arguments().value(0).toString() : QString());
        });
}

QDBusMessage BusConnection::busCall(const QString& member)
{
    return QDBusMessage::createMethodCall(busName, QStringLiteral("/org/freedesktop/DBus"), busName,
                                          member);
}

void BusConnection::send(const QDBusMessage& message)
{
    if (mState == State::unknown)
        mWaiting.push_back([=, this] { send(message); });
    else if (isConnected())
        mConnection->send(message);
}

} // namespace farview
