#include "Tests/Support/ScriptedPolkit.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QMap>

namespace
{

const char* const connectionName = "scripted-polkit";

} // namespace

ScriptedPolkit::ScriptedPolkit(const std::string& busAddress)
    : mConnection(QDBusConnection::connectToBus(QString::fromStdString(busAddress),
                                                QString::fromLatin1(connectionName)))
{
    mConnection.registerVirtualObject(QStringLiteral("/org/freedesktop/PolicyKit1/Authority"),
                                      this);
    mConnection.registerService(QStringLiteral("org.freedesktop.PolicyKit1"));
}

ScriptedPolkit::~ScriptedPolkit()
{
    QDBusConnection::disconnectFromBus(QString::fromLatin1(connectionName));
}

void ScriptedPolkit::setResult(bool isAuthorized, bool isChallenge, QMap<QString, QString> details)
{
    mError.clear();
    mIsAuthorized = isAuthorized;
    mIsChallenge = isChallenge;
    mDetails = std::move(details);
}

void ScriptedPolkit::setSessionOfDisplay(const QString& identifier)
{
    mSession = identifier;
    mConnection.registerVirtualObject(QStringLiteral("/org/freedesktop/login1/user/self"), this);
    mConnection.registerService(QStringLiteral("org.freedesktop.login1"));
}

QDBusMessage ScriptedPolkit::display(const QDBusMessage& message) const
{
    QDBusArgument display;
    display.beginStructure();
    display << mSession << QDBusObjectPath(QStringLiteral("/"));
    display.endStructure();
    return message.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(display))));
}

QString ScriptedPolkit::introspect(const QString& /*path*/) const { return {}; }

bool ScriptedPolkit::handleMessage(const QDBusMessage& message, const QDBusConnection& connection)
{
    if (message.member() == QStringLiteral("Get"))
        return connection.send(display(message));
    Question question;
    question.member = message.member();
    const auto arguments = message.arguments();
    const auto subject = arguments.value(0).value<QDBusArgument>();
    subject.beginStructure();
    subject >> question.subjectKind >> question.subject;
    subject.endStructure();
    const bool isCheck = question.member == QStringLiteral("CheckAuthorization");
    if (isCheck) {
        question.action = arguments.value(1).toString();
        question.flags = arguments.value(3).toUInt();
    }
    mQuestions.push_back(question);
    message.setDelayedReply(true);
    if (isCheck && mHolds)
        return true;
    return connection.send(
        isCheck ? answerTo(message)
                : message.createErrorReply(
                      QStringLiteral("org.freedesktop.PolicyKit1.Error.Failed"), mAgentError));
}

QDBusMessage ScriptedPolkit::answerTo(const QDBusMessage& message) const
{
    if (!mError.isEmpty())
        return message.createErrorReply(mError, QStringLiteral("scripted"));
    if (mNonsense)
        return message.createReply(QStringLiteral("yes"));
    QDBusArgument result;
    result.beginStructure();
    result << mIsAuthorized << mIsChallenge;
    result.beginMap(QMetaType::fromType<QString>(), QMetaType::fromType<QString>());
    for (auto each = mDetails.cbegin(); each != mDetails.cend(); ++each) {
        result.beginMapEntry();
        result << each.key() << each.value();
        result.endMapEntry();
    }
    result.endMap();
    result.endStructure();
    return message.createReply(QVariant::fromValue(result));
}
