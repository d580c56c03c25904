#include "Tests/Support/ScriptedPortal.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>

#include <utility>

namespace
{

const char* const connectionName = "scripted-portal";
const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
const auto settings = QStringLiteral("org.freedesktop.portal.Settings");

} // namespace

ScriptedPortal::ScriptedPortal(const std::string& busAddress)
    : mConnection(QDBusConnection::connectToBus(QString::fromStdString(busAddress),
                                                QString::fromLatin1(connectionName)))
{
    mConnection.registerVirtualObject(path, this);
    mConnection.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
}

ScriptedPortal::~ScriptedPortal()
{
    QDBusConnection::disconnectFromBus(QString::fromLatin1(connectionName));
}

void ScriptedPortal::set(const char* area, const char* key, const QVariant& value)
{
    mValues[QString::fromLatin1(area)][QString::fromLatin1(key)] = value;
}

void ScriptedPortal::change(const char* area, const char* key, const QVariant& value)
{
    set(area, key, value);
    auto signal = QDBusMessage::createSignal(path, settings, QStringLiteral("SettingChanged"));
    signal << QString::fromLatin1(area) << QString::fromLatin1(key)
           << QVariant::fromValue(QDBusVariant(value));
    mConnection.send(signal);
}

void ScriptedPortal::release()
{
    mHolds = false;
    for (const QDBusMessage& each : std::exchange(mHeld, {}))
        mConnection.send(answerTo(each));
}

QString ScriptedPortal::introspect(const QString& /*path*/) const { return {}; }

bool ScriptedPortal::handleMessage(const QDBusMessage& message, const QDBusConnection& connection)
{
    if (message.member() != QStringLiteral("ReadAll"))
        return false;
    ++mQuestions;
    message.setDelayedReply(true);
    if (mHolds) {
        mHeld.push_back(message);
        return true;
    }
    return connection.send(answerTo(message));
}

QDBusMessage ScriptedPortal::answerTo(const QDBusMessage& message) const
{
    if (mNonsense)
        return message.createReply(QStringLiteral("dark"));
    QDBusArgument all;
    all.beginMap(QMetaType::fromType<QString>(), QMetaType::fromType<QVariantMap>());
    for (auto each = mValues.cbegin(); each != mValues.cend(); ++each) {
        all.beginMapEntry();
        all << each.key() << each.value();
        all.endMapEntry();
    }
    all.endMap();
    return message.createReply(QVariant::fromValue(all));
}
