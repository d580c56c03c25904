#pragma once

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <string>
#include <vector>

namespace farview
{

/// Answers for GNOME's window manager, and for its lock screen, on a bus of the test's own. Says
/// nothing of its monitors.
class ScriptedMutter : public QDBusVirtualObject
{
public:
    int version = 4;
    bool isLocked = false;
    QString error;    ///< the answer to whoever wants a session
    std::string held; ///< the name of questions that stay open
    std::vector<std::string> calls;

    explicit ScriptedMutter(const std::string& busAddress)
        : mConnection(
              QDBusConnection::connectToBus(QString::fromStdString(busAddress), connectionName()))
    {
        mConnection.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath);
        for (const char* name : {"org.gnome.Mutter.DisplayConfig", "org.gnome.Mutter.RemoteDesktop",
                                 "org.gnome.Mutter.ScreenCast", "org.gnome.ScreenSaver"})
            mConnection.registerService(QLatin1String(name));
    }
    ~ScriptedMutter() override { QDBusConnection::disconnectFromBus(connectionName()); }

    void leave(const char* name) { mConnection.unregisterService(QLatin1String(name)); }
    void answerHeld() { mConnection.send(answerTo(mHeld)); }
    /// As when the screen is locked, or the user ends what is shared.
    void closeSession()
    {
        mConnection.send(QDBusMessage::createSignal(
            path(), QStringLiteral("org.gnome.Mutter.RemoteDesktop.Session"),
            QStringLiteral("Closed")));
    }
    bool wasAsked(const std::string& member) const
    {
        return std::find(calls.begin(), calls.end(), member) != calls.end();
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        const auto member = message.member().toStdString();
        calls.push_back(member);
        message.setDelayedReply(true);
        if (member == held)
            mHeld = message;
        else if (member != "GetCurrentState")
            connection.send(answerTo(message));
        return true;
    }

private:
    static QString connectionName() { return QStringLiteral("scripted-mutter"); }
    static QString path() { return QStringLiteral("/session"); }

    QDBusMessage answerTo(const QDBusMessage& message) const
    {
        const auto member = message.member();
        if (member == u"CreateSession" && !error.isEmpty())
            return message.createErrorReply(error, QStringLiteral("scripted"));
        if (member == u"CreateSession" || member == u"RecordVirtual")
            return message.createReply(QVariant::fromValue(QDBusObjectPath(path())));
        if (member == u"GetActive")
            return message.createReply(isLocked);
        if (member != u"Get")
            return message.createReply();
        const bool isVersion = message.arguments().value(1).toString() == u"Version";
        const QVariant value = isVersion ? QVariant(version) : QVariant(QStringLiteral("1"));
        return message.createReply(QVariant::fromValue(QDBusVariant(value)));
    }

    QDBusConnection mConnection;
    QDBusMessage mHeld;
};

} // namespace farview
