#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <set>
#include <string>

/// A desktop that can be kept awake.
class ScriptedScreenSaver : public QDBusVirtualObject
{
public:
    explicit ScriptedScreenSaver(const std::string& address)
        : mConnection(QDBusConnection::connectToBus(QString::fromStdString(address), name))
    {
        mConnection.registerVirtualObject(QStringLiteral("/org/freedesktop/ScreenSaver"), this);
        mConnection.registerService(QStringLiteral("org.freedesktop.ScreenSaver"));
    }
    ~ScriptedScreenSaver() override { QDBusConnection::disconnectFromBus(name); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        if (message.member() == QStringLiteral("UnInhibit"))
            return cookies.erase(message.arguments().at(0).toUInt()) == 1;
        cookies.insert(++mLast);
        reason = message.arguments().at(1).toString().toStdString();
        return connection.send(isBroken ? message.createErrorReply(QDBusError::NoMemory, {})
                                        : message.createReply(mLast));
    }

    std::set<uint> cookies; ///< of those who want it awake
    std::string reason;
    bool isBroken = false;

private:
    static inline const QString name = QStringLiteral("screen-saver");
    QDBusConnection mConnection;
    uint mLast = 100;
};
