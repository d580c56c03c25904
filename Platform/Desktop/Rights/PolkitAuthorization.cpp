#include "Platform/Desktop/Rights/PolkitAuthorization.h"

#include "Platform/Desktop/Bus/BusHandshake.h"
#include "Platform/Posix/Processes/ToolTrust.h"
#include "Platform/Types/AuthorizationStatus.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTimer>

#include <functional>
#include <limits>
#include <memory>
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

/// One question to polkit about what this process may have done, on a connection of its own to the
/// system bus. Ending the object ends the connection, and polkit then takes back what it is asking
/// the user. Nothing waits for people, and nothing for a bus that stands still: an answer may take
/// for ever. Main thread only.
class PolkitQuestion : public QObject
{
public:
    using Answer = std::function<void(AuthorizationStatus)>;

    PolkitQuestion(const QString& busAddress, QObject* parent)
        : QObject(parent), mBusAddress(busAddress),
          mName(QStringLiteral("farview-polkit-%1").arg(reinterpret_cast<quintptr>(this))),
          mConnection(mName)
    {
    }

    ~PolkitQuestion() override { QDBusConnection::disconnectFromBus(mName); }

    /// Asks the user when that is needed. One answer, on a later turn; so has `foresee`.
    void ask(const QString& action, Answer answer)
    {
        mAnswer = std::move(answer);
        reachBus([this, action] {
            check(action, askTheUser,
                  [this](const QDBusMessage& reply) { answerNow(statusOfResult(reply)); });
        });
    }

    /// The same without asking anybody; a question that the user could be asked is a success.
    void foresee(const QString& action, Answer answer)
    {
        mAnswer = std::move(answer);
        reachBus([this, action] {
            check(action, 0,
                  [this](const QDBusMessage& reply) { foretell(statusOfResult(reply)); });
        });
    }

private:
    using Reply = std::function<void(const QDBusMessage&)>;

    void foretell(AuthorizationStatus status)
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

    void reachBus(std::function<void()> reached)
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

    void check(const QString& action, quint32 flags, Reply reply)
    {
        call(QStringLiteral("CheckAuthorization"),
             {thisProcess(), action, noDetails(), flags, QString()}, std::move(reply));
    }

    void call(const QString& member, const QVariantList& arguments, Reply reply)
    {
        auto message = QDBusMessage::createMethodCall(
            service, QStringLiteral("/org/freedesktop/PolicyKit1/Authority"),
            service + QStringLiteral(".Authority"), member);
        message.setArguments(arguments);
        send(message, std::move(reply));
    }

    void send(const QDBusMessage& message, Reply reply)
    {
        auto* watcher = new QDBusPendingCallWatcher(mConnection.asyncCall(message, noLimit), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, reply] {
            watcher->deleteLater();
            reply(watcher->reply());
        });
    }

    void findSession(const std::function<void(const QString&)>& found)
    {
        const QString identifier = qEnvironmentVariable("XDG_SESSION_ID");
        if (!identifier.isEmpty())
            return found(identifier);
        // What a desktop starts as a service is in no session; then it belongs to the user's
        // display.
        auto message = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.login1"),
            QStringLiteral("/org/freedesktop/login1/user/self"),
            QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
        message << QStringLiteral("org.freedesktop.login1.User") << QStringLiteral("Display");
        message.setAutoStartService(false);
        send(message, [found](const QDBusMessage& reply) { found(sessionOfDisplay(reply)); });
    }

    void lookForAgentOf(const QVariant& subject, const std::function<void()>& none)
    {
        // polkit tells nobody which agents there are. Asked to let go of one that is not ours, it
        // does nothing but say whether there is one; what it says otherwise is no reason for an
        // alarm.
        call(QStringLiteral("UnregisterAuthenticationAgent"),
             {subject, QStringLiteral("/com/quillon/Farview")},
             [this, none](const QDBusMessage& reply) {
                 if (reply.errorMessage().contains(QStringLiteral("No such agent")))
                     none();
                 else
                     answerNow(AuthorizationStatus::success);
             });
    }

    void answerNow(AuthorizationStatus status)
    {
        deleteLater();
        if (const auto answer = std::exchange(mAnswer, nullptr))
            answer(status);
    }

    QString mBusAddress;
    QString mName;
    std::unique_ptr<BusCheck> mBusCheck;
    QDBusConnection mConnection;
    Answer mAnswer;
};

using Status = Authorization::Status;

QString canonical(const URL& tool) { return QString::fromStdString(canonicalProgram(tool.path())); }

QString actionOf(const URL& tool) { return QFileInfo(canonical(tool)).fileName(); }

/// Calls the answer unless its target has gone.
std::function<void(Status)> answering(std::weak_ptr<void> target, Authorization::Answer then)
{
    return [target = std::move(target), then = std::move(then)](Status status) {
        if (const auto kept = target.lock())
            then(status);
    };
}

Status statusOfEnd(int exitCode, QProcess::ExitStatus exitStatus)
{
    constexpr int dismissed = 126;
    if (exitStatus != QProcess::NormalExit)
        return Status::toolExecuteFailure;
    if (exitCode == dismissed)
        return Status::canceled;
    return exitCode == 0 ? Status::success : Status::toolExecuteFailure;
}

/// What pkexec takes for suspicious in an environment is nothing that the tool needs.
void setBareEnvironment(QProcess& process)
{
    QProcessEnvironment bare;
    bare.insert(QStringLiteral("PATH"), QStringLiteral("/usr/sbin:/usr/bin:/sbin:/bin"));
    process.setProcessEnvironment(bare);
    process.setWorkingDirectory(QStringLiteral("/"));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

} // namespace

PolkitAuthorization::PolkitAuthorization(PolkitPlaces places) : mPlaces(std::move(places)) {}

PolkitAuthorization::~PolkitAuthorization()
{
    for (auto* process : findChildren<QProcess*>()) {
        // Destroying it would wait for the tool's end.
        process->disconnect();
        process->setParent(QCoreApplication::instance());
        connect(process, &QProcess::finished, process, &QObject::deleteLater);
    }
}

Authorization::Obstacle PolkitAuthorization::obstacleOf(const URL& tool)
{
    const std::string path = canonicalProgram(tool.path());
    if (path.empty())
        return {Obstacle::Kind::missing, tool.path()};
    const std::string changeable = firstChangeableByOthers(partsOfPath(path));
    if (!changeable.empty())
        return {Obstacle::Kind::changeableByOthers, changeable};
    return {};
}

void PolkitAuthorization::foresee(const URL& tool, std::weak_ptr<void> target, Answer then)
{
    auto* question = new PolkitQuestion(mPlaces.busAddress, this);
    question->foresee(actionOf(tool), answering(std::move(target), std::move(then)));
}

void PolkitAuthorization::create(const std::string& /*right*/, const URL& tool,
                                 std::weak_ptr<void> target, Answer then)
{
    // There is one right, to run the helpers as administrator; polkit knows it by the tool.
    auto* question = new PolkitQuestion(mPlaces.busAddress, this);
    question->ask(actionOf(tool), answering(std::move(target), std::move(then)));
}

void PolkitAuthorization::executeWithPrivileges(const URL& tool, std::weak_ptr<void> target,
                                                Answer then)
{
    const auto answer = answering(std::move(target), std::move(then));
    if (obstacleOf(tool).kind != Obstacle::Kind::none) {
        QTimer::singleShot(0, this, [answer] { answer(Status::toolExecuteFailure); });
        return;
    }
    auto* process = new QProcess(this);
    setBareEnvironment(*process);
    connect(process, &QProcess::finished, this,
            [process, answer](int exitCode, QProcess::ExitStatus exitStatus) {
                process->deleteLater();
                answer(statusOfEnd(exitCode, exitStatus));
            });
    connect(process, &QProcess::errorOccurred, this,
            [process, answer](QProcess::ProcessError error) {
                if (error != QProcess::FailedToStart)
                    return;
                process->deleteLater();
                answer(Status::toolExecuteFailure);
            });
    process->start(mPlaces.pkexec, {QStringLiteral("--disable-internal-agent"), canonical(tool)});
}

} // namespace farview
