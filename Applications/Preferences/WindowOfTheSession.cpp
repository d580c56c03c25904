#include "Applications/Preferences/WindowOfTheSession.h"

#include <utility>

namespace
{

constexpr auto objectPath = "/com/quillon/FarviewPreferences";
constexpr auto interfaceName = "com.quillon.FarviewPreferences";
constexpr int longestWait = 5'000; // milliseconds

} // namespace

WindowOfTheSession::WindowOfTheSession(farview::Log& log) : mBus(log)
{
    // Before the name is asked for: who finds the name finds the object.
    connect(&mBus, &farview::SessionBus::connected, this, [this](bool again) {
        mBus.connection().registerObject(QString::fromLatin1(objectPath), this,
                                         QDBusConnection::ExportScriptableSlots);
        if (again)
            mBus.requestName(serviceName().toStdString(), this, [](bool) {});
    });
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

void WindowOfTheSession::becomeFirst(Handler handler, std::function<void(bool isFirst)> then)
{
    mHandler = std::move(handler);
    mBus.requestName(
        serviceName().toStdString(), this,
        [this, then = std::move(then)](bool isOurs) { then(isOurs || !mBus.isConnected()); });
}

void WindowOfTheSession::handOver(const Wish& wish, std::function<void(const HostError&)> then)
{
    const auto call = QDBusMessage::createMethodCall(serviceName(), QString::fromLatin1(objectPath),
                                                     QString::fromLatin1(interfaceName), u"Show"_qs)
                      << wish.pane << wish.activationToken;
    const auto tell = [then = std::move(then)](const QDBusMessage& reply) {
        if (reply.signature() == u"is")
            then({static_cast<HostStatus>(reply.arguments().at(0).toInt()),
                  reply.arguments().at(1).toString()});
        else
            then({HostStatus::noAnswer,
                  u"Farview Preferences is open already, but does not answer."_qs});
    };
    mBus.ask(call, this, tell, longestWait);
}

int WindowOfTheSession::Show(const QString& pane, const QString& activationToken, QString& message)
{
    const HostError error = mHandler ? mHandler({pane, activationToken}) : HostError{};
    message = error.message;
    return static_cast<int>(error.status);
}
