#include "Platform/Desktop/Rights/PolkitQuestion.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QFile>
#include <QMap>

#include <limits>
#include <unistd.h>

namespace farview
{
namespace
{

constexpr int noLimit = std::numeric_limits<int>::max();
constexpr quint32 askTheUser = 1;
constexpr std::chrono::seconds patienceWithBus{2};
const QString service = QStringLiteral("org.freedesktop.PolicyKit1");

/// When this process started, in the kernel's own count: with its number, it names the process.
quint64 startTime()
{
    QFile file(QStringLiteral("/proc/self/stat"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray line = file.readAll();
    // The program's name is in parentheses and may hold blanks. Start time is field 22.
    constexpr qsizetype fieldsAfterName = 20;
    const auto fields = line.mid(line.lastIndexOf(')') + 1).simplified().split(' ');
    return fields.size() < fieldsAfterName ? 0 : fields.at(fieldsAfterName - 1).toULongLong();
}

QVariant subject(const QString& kind, const QVariantMap& details)
{
    QDBusArgument argument;
    argument.beginStructure();
    argument << kind << details;
    argument.endStructure();
    return QVariant::fromValue(argument);
}

QVariant thisProcess()
{
    return subject(QStringLiteral("unix-process"),
                   {{QStringLiteral("pid"), static_cast<quint32>(::getpid())},
                    {QStringLiteral("start-time"), startTime()},
                    {QStringLiteral("uid"), static_cast<qint32>(::getuid())}});
}

QVariant session(const QString& identifier)
{
    return subject(QStringLiteral("unix-session"), {{QStringLiteral("session-id"), identifier}});
}

QVariant noDetails()
{
    QDBusArgument argument;
    argument.beginMap(QMetaType::fromType<QString>(), QMetaType::fromType<QString>());
    argument.endMap();
    return QVariant::fromValue(argument);
}

AuthorizationStatus statusOfError(const QDBusMessage& error)
{
    return error.errorName() == service + QStringLiteral(".Error.NotAuthorized")
               ? AuthorizationStatus::denied
               : AuthorizationStatus::internal;
}

AuthorizationStatus statusOfResult(const QDBusMessage& reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage)
        return statusOfError(reply);
    if (reply.signature() != QStringLiteral("(bba{ss})"))
        return AuthorizationStatus::internal;
    bool isAuthorized = false;
    bool isChallenge = false;
    QMap<QString, QString> details;
    const auto result = reply.arguments().constFirst().value<QDBusArgument>();
    result.beginStructure();
    result >> isAuthorized >> isChallenge >> details;
    result.endStructure();
    if (isAuthorized)
        return AuthorizationStatus::success;
    if (details.contains(QStringLiteral("polkit.dismissed")))
        return AuthorizationStatus::canceled;
    return isChallenge ? AuthorizationStatus::interactionNotAllowed : AuthorizationStatus::denied;
}

/// Empty when there is none.
QString sessionOfDisplay(const QDBusMessage& reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != QStringLiteral("v"))
        return {};
    const auto display =
        reply.arguments().constFirst().value<QDBusVariant>().variant().value<QDBusArgument>();
    if (display.currentSignature() != QStringLiteral("(so)"))
        return {};
    QString identifier;
    QDBusObjectPath path;
    display.beginStructure();
    display >> identifier >> path;
    display.endStructure();
    return identifier;
}

} // namespace

PolkitQuestion::PolkitQuestion(const QString& busAddress, QObject* parent)
    : QObject(parent), mBusAddress(busAddress),
      mName(QStringLiteral("farview-polkit-%1").arg(reinterpret_cast<quintptr>(this))),
      mConnection(mName)
{
}

PolkitQuestion::~PolkitQuestion() { QDBusConnection::disconnectFromBus(mName); }

void PolkitQuestion::ask(const QString& action, Answer answer)
{
    mAnswer = std::move(answer);
    reachBus([this, action] {
        check(action, askTheUser,
              [this](const QDBusMessage& reply) { answerNow(statusOfResult(reply)); });
    });
}

void PolkitQuestion::foresee(const QString& action, Answer answer)
{
    mAnswer = std::move(answer);
    reachBus([this, action] {
        check(action, 0, [this](const QDBusMessage& reply) { foretell(statusOfResult(reply)); });
    });
}

void PolkitQuestion::foretell(AuthorizationStatus status)
{
    if (status != AuthorizationStatus::interactionNotAllowed)
        return answerNow(status);
    // A password is needed. Who asks for it serves this process alone, or its whole session.
    const auto none = [this] { answerNow(AuthorizationStatus::interactionNotAllowed); };
    lookForAgentOf(thisProcess(), [this, none] {
        findSession([this, none](const QString& identifier) {
            if (identifier.isEmpty())
                none();
            else
                lookForAgentOf(session(identifier), none);
        });
    });
}

void PolkitQuestion::reachBus(std::function<void()> reached)
{
    // The library's way onto a bus waits for it; one that stopped would hold the window.
    mBusCheck = std::make_unique<BusCheck>(
        mBusAddress.toStdString(), patienceWithBus, [this, reached](BusAnswer answer) {
            if (answer == BusAnswer::answers)
                mConnection = QDBusConnection::connectToBus(mBusAddress, mName);
            if (mConnection.isConnected())
                reached();
            else
                answerNow(AuthorizationStatus::internal);
        });
}

void PolkitQuestion::findSession(const std::function<void(const QString&)>& found)
{
    const QString identifier = qEnvironmentVariable("XDG_SESSION_ID");
    if (!identifier.isEmpty())
        return found(identifier);
    // What a desktop starts as a service is in no session; then it belongs to the user's display.
    auto message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"),
        QStringLiteral("/org/freedesktop/login1/user/self"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    message << QStringLiteral("org.freedesktop.login1.User") << QStringLiteral("Display");
    message.setAutoStartService(false);
    send(message, [found](const QDBusMessage& reply) { found(sessionOfDisplay(reply)); });
}

void PolkitQuestion::lookForAgentOf(const QVariant& subject, const std::function<void()>& none)
{
    // polkit tells nobody which agents there are. Asked to let go of one that is not ours, it does
    // nothing but say whether there is one; what it says otherwise is no reason for an alarm.
    call(QStringLiteral("UnregisterAuthenticationAgent"),
         {subject, QStringLiteral("/com/quillon/Farview")},
         [this, none](const QDBusMessage& reply) {
             if (reply.errorMessage().contains(QStringLiteral("No such agent")))
                 none();
             else
                 answerNow(AuthorizationStatus::success);
         });
}

void PolkitQuestion::check(const QString& action, quint32 flags, Reply reply)
{
    call(QStringLiteral("CheckAuthorization"),
         {thisProcess(), action, noDetails(), flags, QString()}, std::move(reply));
}

void PolkitQuestion::call(const QString& member, const QVariantList& arguments, Reply reply)
{
    auto message = QDBusMessage::createMethodCall(
        service, QStringLiteral("/org/freedesktop/PolicyKit1/Authority"),
        service + QStringLiteral(".Authority"), member);
    message.setArguments(arguments);
    send(message, std::move(reply));
}

void PolkitQuestion::send(const QDBusMessage& message, Reply reply)
{
    auto* watcher = new QDBusPendingCallWatcher(mConnection.asyncCall(message, noLimit), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, reply] {
        watcher->deleteLater();
        reply(watcher->reply());
    });
}

void PolkitQuestion::answerNow(AuthorizationStatus status)
{
    deleteLater();
    if (const auto answer = std::exchange(mAnswer, nullptr))
        answer(status);
}

} // namespace farview
