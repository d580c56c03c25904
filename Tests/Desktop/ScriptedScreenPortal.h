#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QVariantMap>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace farview
{

/// As a portal tells of a stream.
struct ScriptedPair {
    int first = 0;
    int second = 0;
};
struct ScriptedStream {
    unsigned node = 0;
    QVariantMap properties;
};
using ScriptedStreams = QList<ScriptedStream>;

inline QDBusArgument& operator<<(QDBusArgument& argument, const ScriptedPair& pair)
{
    argument.beginStructure();
    argument << pair.first << pair.second;
    argument.endStructure();
    return argument;
}
inline const QDBusArgument& operator>>(const QDBusArgument& argument, ScriptedPair&)
{
    return argument;
}
inline QDBusArgument& operator<<(QDBusArgument& argument, const ScriptedStream& stream)
{
    argument.beginStructure();
    argument << stream.node << stream.properties;
    argument.endStructure();
    return argument;
}
inline const QDBusArgument& operator>>(const QDBusArgument& argument, ScriptedStream&)
{
    return argument;
}

/// A desktop's portal for screens and their control, on a bus of the test's own. Its user says yes
/// at once, unless a test says something else.
class ScriptedScreenPortal : public QDBusVirtualObject
{
public:
    QVariantMap screenCast{{QStringLiteral("version"), 5U},
                           {QStringLiteral("AvailableSourceTypes"), 7U},
                           {QStringLiteral("AvailableCursorModes"), 7U}};
    QVariantMap remoteDesktop{{QStringLiteral("version"), 2U},
                              {QStringLiteral("AvailableDeviceTypes"), 7U}};
    /// How questions end; 0 where nothing is said.
    std::map<QString, unsigned> responses;
    QString error;       ///< the answer to whoever brings a word
    QString waiting;     ///< the question that is left open
    QVariantMap results; ///< what is said once it is shown
    std::vector<QDBusMessage> calls;
    int remote = -1; ///< a connection to PipeWire

    explicit ScriptedScreenPortal(const std::string& busAddress)
        : mConnection(
              QDBusConnection::connectToBus(QString::fromStdString(busAddress), connectionName()))
    {
        qDBusRegisterMetaType<ScriptedPair>();
        qDBusRegisterMetaType<ScriptedStream>();
        qDBusRegisterMetaType<ScriptedStreams>();
        show({});
        mConnection.registerVirtualObject(path(), this, QDBusConnection::SubPath);
        mConnection.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
    }
    ~ScriptedScreenPortal() override { leave(); }
    /// From now on that is said of the stream.
    void show(const QVariantMap& stream, unsigned node = 7)
    {
        results[QStringLiteral("streams")] = QVariant::fromValue(ScriptedStreams{{node, stream}});
    }
    static QVariant pair(int first, int second)
    {
        return QVariant::fromValue(ScriptedPair{first, second});
    }
    /// As when it crashes.
    void leave()
    {
        mConnection = QDBusConnection(QStringLiteral("no-bus"));
        QDBusConnection::disconnectFromBus(connectionName());
    }

    QVariantMap optionsOf(const QString& member) const
    {
        const auto* call = find(member);
        return call ? optionsOf(*call) : QVariantMap();
    }
    bool wasAsked(const QString& member) const { return find(member) != nullptr; }
    /// The members of an interface that were called, in their order.
    std::vector<std::string> membersOf(const QString& interface) const
    {
        std::vector<std::string> members;
        for (const auto& call : calls)
            if (call.interface().endsWith(interface))
                members.push_back(call.member().toStdString());
        return members;
    }
    /// As when the user ends it with the desktop's own means.
    void closeSession()
    {
        auto signal = QDBusMessage::createSignal(
            mSession, QStringLiteral("org.freedesktop.portal.Session"), QStringLiteral("Closed"));
        mConnection.send(signal << QVariantMap());
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        calls.push_back(message);
        message.setDelayedReply(true);
        connection.send(answerTo(message));
        const auto options = optionsOf(message);
        if (options.contains(QStringLiteral("handle_token")) && message.member() != waiting)
            respond(message, options);
        return true;
    }

private:
    static QString connectionName() { return QStringLiteral("scripted-screen-portal"); }
    static QString path() { return QStringLiteral("/org/freedesktop/portal/desktop"); }
    static QString path(const char* kind, const QDBusMessage& message, const QVariant& token)
    {
        const auto sender = message.service().mid(1).replace(u'.', u'_');
        return path() + u'/' + QLatin1String(kind) + u'/' + sender + u'/' + token.toString();
    }

    static QVariantMap optionsOf(const QDBusMessage& message)
    {
        const auto last = message.arguments().isEmpty() ? QVariant() : message.arguments().last();
        return qdbus_cast<QVariantMap>(last);
    }
    const QDBusMessage* find(const QString& member) const
    {
        const auto found = std::find_if(calls.rbegin(), calls.rend(),
                                        [&](const auto& call) { return call.member() == member; });
        return found == calls.rend() ? nullptr : &*found;
    }

    QDBusMessage answerTo(const QDBusMessage& message)
    {
        if (message.member() == u"GetAll")
            return propertiesOf(message);
        if (message.member() == u"OpenPipeWireRemote")
            return remote < 0
                       ? message.createErrorReply(QDBusError::Failed, QString())
                       : message.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(remote)));
        const auto options = optionsOf(message);
        if (!error.isEmpty() && options.contains(QStringLiteral("restore_token")))
            return message.createErrorReply(error, QStringLiteral("scripted"));
        if (!options.contains(QStringLiteral("handle_token")))
            return message.createReply();
        const auto handle = path("request", message, options.value(QStringLiteral("handle_token")));
        return message.createReply(QVariant::fromValue(QDBusObjectPath(handle)));
    }

    QDBusMessage propertiesOf(const QDBusMessage& message) const
    {
        const auto interface = message.arguments().value(0).toString();
        const auto& all = interface.endsWith(u"ScreenCast") ? screenCast : remoteDesktop;
        return all.isEmpty() ? message.createErrorReply(QDBusError::InvalidArgs, QString())
                             : message.createReply(all);
    }

    void respond(const QDBusMessage& message, const QVariantMap& options)
    {
        const auto handle = path("request", message, options[QStringLiteral("handle_token")]);
        auto signal = QDBusMessage::createSignal(
            handle, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
        mConnection.send(signal << responses[message.member()] << resultsOf(message, options));
    }

    QVariantMap resultsOf(const QDBusMessage& message, const QVariantMap& options)
    {
        if (message.member() == u"CreateSession") {
            mSession = path("session", message, options[QStringLiteral("session_handle_token")]);
            return {{QStringLiteral("session_handle"), mSession}};
        }
        return message.member() == u"Start" ? results : QVariantMap();
    }

    QDBusConnection mConnection;
    QString mSession;
};

} // namespace farview
