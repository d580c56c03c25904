#include "Platform/Desktop/Bus/SessionBus.h"

#include <QDBusPendingCall>
#include <QDBusReply>
#include <QFileInfo>

#include <unistd.h>

#include <string>

namespace farview
{
namespace
{

constexpr Duration firstPause{0.1};
constexpr Duration longestPause{30.0};

const QString busService = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");

constexpr unsigned doNotQueue = 4;
constexpr unsigned nowPrimaryOwner = 1;
constexpr unsigned alreadyOwner = 4;

/// Connections are named process-wide, but host and pane have one each, and a dead one cannot be
/// used again.
QString freshConnectionName()
{
    static unsigned count = 0;
    return QStringLiteral("farview-%1-%2").arg(quintptr(&count), 0, 16).arg(++count);
}

/// Nothing where no bus is known.
std::optional<QDBusConnection> connectToBus(const QString& name)
{
    const QString where = SessionBus::address();
    if (where.isEmpty())
        return std::nullopt;
    return QDBusConnection::connectToBus(where, name);
}

bool runsAsThisUser(const QDBusConnection& bus)
{
    auto call = SessionBus::busCall(QStringLiteral("GetConnectionUnixUser"));
    call << busService;
    const QDBusReply<uint> owner = bus.call(call, QDBus::Block, SessionBus::blockingLimit);
    return owner.isValid() && owner.value() == geteuid();
}

} // namespace

SessionBus::SessionBus(Log& log) : mLog(log), mPause(firstPause, longestPause)
{
    mRetry.setSingleShot(true);
    connect(&mRetry, &QTimer::timeout, this, &SessionBus::tryToConnect);
    tryToConnect();
}

SessionBus::~SessionBus() { closeConnection(); }

QDBusConnection SessionBus::connection() const
{
    return mConnection ? *mConnection : QDBusConnection(QStringLiteral("farview-no-bus"));
}

QString SessionBus::uniqueName() const
{
    return mConnection ? mConnection->baseService() : QString();
}

QDBusMessage SessionBus::busCall(const QString& member)
{
    return QDBusMessage::createMethodCall(busService, busPath, busService, member);
}

bool SessionBus::requestName(const std::string& name)
{
    auto call = busCall(QStringLiteral("RequestName"));
    call << QString::fromStdString(name) << doNotQueue;
    const QDBusReply<uint> reply = connection().call(call, QDBus::Block, blockingLimit);
    return reply.isValid() && (reply.value() == nowPrimaryOwner || reply.value() == alreadyOwner);
}

void SessionBus::releaseName(const std::string& name)
{
    auto call = busCall(QStringLiteral("ReleaseName"));
    call << QString::fromStdString(name);
    connection().send(call);
}

QString SessionBus::nameOwner(const std::string& name)
{
    auto call = busCall(QStringLiteral("GetNameOwner"));
    call << QString::fromStdString(name);
    const QDBusReply<QString> reply = connection().call(call, QDBus::Block, blockingLimit);
    return reply.isValid() ? reply.value() : QString();
}

bool SessionBus::canReach(const QString& name)
{
    if (!isConnected())
        return false;
    const QDBusReply<QStringList> startable = connection().call(
        busCall(QStringLiteral("ListActivatableNames")), QDBus::Block, blockingLimit);
    return startable.value().contains(name) || !nameOwner(name.toStdString()).isEmpty();
}

QString SessionBus::address()
{
    const QString stated = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (!stated.isEmpty())
        return stated;
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return folder.isEmpty() ? QString() : QStringLiteral("unix:path=%1/bus").arg(folder);
}

QDBusConnection SessionBus::open(const QString& name)
{
    const auto connection = connectToBus(name);
    if (connection && connection->isConnected() && !runsAsThisUser(*connection))
        QDBusConnection::disconnectFromBus(name);
    return QDBusConnection(name);
}

void SessionBus::tryToConnect()
{
    if (!openConnection()) {
        closeConnection();
        retryLater();
        return;
    }
    mPause.reset();
    Q_EMIT connected(std::exchange(mWasMissing, false));
}

bool SessionBus::openConnection()
{
    mConnection = connectToBus(freshConnectionName());
    if (!mConnection || !mConnection->isConnected() || !listenForLoss())
        return false;
    if (runsAsThisUser(*mConnection))
        return true;
    mLog.write(LogLevel::warning, "The session bus does not run as this user; not using it");
    return false;
}

bool SessionBus::listenForLoss()
{
    return mConnection->connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                QStringLiteral("org.freedesktop.DBus.Local"),
                                QStringLiteral("Disconnected"), this, SLOT(noticeDisconnection()));
}

void SessionBus::closeConnection()
{
    if (!mConnection)
        return;
    const QString name = mConnection->name();
    mConnection.reset();
    QDBusConnection::disconnectFromBus(name);
}

void SessionBus::noticeDisconnection()
{
    // A connection that we closed ourselves may still have this call queued.
    if (!mConnection || mConnection->isConnected())
        return;
    mLog.write(LogLevel::warning, "The session bus has gone");
    closeConnection();
    Q_EMIT disconnected();
    retryLater();
}

void SessionBus::retryLater()
{
    if (!mWasMissing && address().isEmpty())
        mLog.write(LogLevel::warning, "No session bus: neither DBUS_SESSION_BUS_ADDRESS nor "
                                      "XDG_RUNTIME_DIR is set");
    mWasMissing = true;
    // Where no address is known, none will be: a process's environment does not change by itself.
    if (!address().isEmpty())
        mRetry.start(static_cast<int>(mPause.next().count() * 1000));
}

} // namespace farview
