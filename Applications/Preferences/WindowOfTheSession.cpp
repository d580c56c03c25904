#include "Applications/Preferences/WindowOfTheSession.h"

#include "Platform/Desktop/Bus/SessionBus.h"

#include <QDBusMessage>

namespace
{

// A connection of the host's own: panes bring theirs.
constexpr auto connectionName = "farview-preferences host";
constexpr auto objectPath = "/com/quillon/FarviewPreferences";
constexpr auto interfaceName = "com.quillon.FarviewPreferences";
constexpr int longestWait = 5'000; // milliseconds

} // namespace

WindowOfTheSession::WindowOfTheSession()
    : mBus(farview::SessionBus::open(QString::fromLatin1(connectionName)))
{
}

WindowOfTheSession::~WindowOfTheSession()
{
    QDBusConnection::disconnectFromBus(QString::fromLatin1(connectionName));
}

QString WindowOfTheSession::serviceName() const
{
    // Sessions of one user may share a bus, but not a screen.
    QString session;
    for (const QChar character : qEnvironmentVariable("XDG_SESSION_ID")) {
        if (character.unicode() < 128 && character.isLetterOrNumber())
            session += character;
    }
    const QString name = QString::fromLatin1(interfaceName);
    return session.isEmpty() ? name : name + u".session"_qs + session;
}

bool WindowOfTheSession::becomeFirst(Handler handler)
{
    mHandler = std::move(handler);
    if (!mBus.isConnected())
        return true;
    mBus.registerObject(QString::fromLatin1(objectPath), this,
                        QDBusConnection::ExportScriptableSlots);
    return mBus.registerService(serviceName());
}

HostError WindowOfTheSession::handOver(const Wish& wish)
{
    auto call = QDBusMessage::createMethodCall(serviceName(), QString::fromLatin1(objectPath),
                                               QString::fromLatin1(interfaceName), u"Show"_qs);
    call << wish.pane << wish.activationToken;
    const QDBusMessage reply = mBus.call(call, QDBus::Block, longestWait);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 2)
        return {HostStatus::noAnswer,
                u"Farview Preferences is open already, but does not answer."_qs};
    return {static_cast<HostStatus>(reply.arguments().at(0).toInt()),
            reply.arguments().at(1).toString()};
}

int WindowOfTheSession::Show(const QString& pane, const QString& activationToken, QString& message)
{
    const HostError error = mHandler({pane, activationToken});
    message = error.message;
    return static_cast<int>(error.status);
}
