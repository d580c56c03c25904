#include "Platform/Desktop/Screens/Mutter/MutterSession.h"

#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QPointer>

#include <linux/input-event-codes.h>
#include <utility>

namespace farview
{
namespace
{

const QString remoteDesktop = QStringLiteral("org.gnome.Mutter.RemoteDesktop");
const QString remoteDesktopPath = QStringLiteral("/org/gnome/Mutter/RemoteDesktop");
const QString remoteSession = QStringLiteral("org.gnome.Mutter.RemoteDesktop.Session");
const QString screenCast = QStringLiteral("org.gnome.Mutter.ScreenCast");
const QString screenCastPath = QStringLiteral("/org/gnome/Mutter/ScreenCast");
const QString screenCastSession = QStringLiteral("org.gnome.Mutter.ScreenCast.Session");
const QString stream = QStringLiteral("org.gnome.Mutter.ScreenCast.Stream");
const QString screenSaver = QStringLiteral("org.gnome.ScreenSaver");

/// The pointer is told apart from the frames.
constexpr unsigned pointerApart = 2;
/// Users' fingers are those below.
constexpr unsigned fingerOfNobody = 16;

QDBusMessage callOf(const QString& service, const QString& path, const QString& interface,
                    const char* member)
{
    auto call = QDBusMessage::createMethodCall(service, path, interface, QLatin1String(member));
    call.setAutoStartService(false);
    return call;
}

QDBusMessage stopCall(const QString& session)
{
    return callOf(remoteDesktop, session, remoteSession, "Stop");
}

QDBusMessage identifierCall(const QString& session)
{
    auto get =
        callOf(remoteDesktop, session, QStringLiteral("org.freedesktop.DBus.Properties"), "Get");
    return get << remoteSession << QStringLiteral("SessionId");
}

QString pathIn(const QDBusMessage& reply)
{
    return reply.arguments().at(0).value<QDBusObjectPath>().path();
}

ScreenObstacle obstacleOf(const QDBusMessage& reply)
{
    // The library has no number for this one.
    if (reply.errorName() == u"org.freedesktop.DBus.Error.NameHasNoOwner")
        return ScreenObstacle::protocolMissing;
    switch (QDBusError(reply).type()) {
    case QDBusError::ServiceUnknown:
    case QDBusError::UnknownObject:
    case QDBusError::UnknownInterface:
    case QDBusError::UnknownMethod:
        return ScreenObstacle::protocolMissing;
    case QDBusError::AccessDenied:
        return ScreenObstacle::notPermitted;
    case QDBusError::Disconnected:
        return ScreenObstacle::noDesktop;
    default:
        return ScreenObstacle::failed;
    }
}

} // namespace

void findObstacle(SessionBus& bus, QObject* asker, const QDBusMessage& reply,
                  std::function<void(ScreenObstacle)> then)
{
    const auto obstacle = obstacleOf(reply);
    if (obstacle != ScreenObstacle::notPermitted)
        return then(obstacle);
    // While the screen is locked Mutter lets nobody have a session.
    askWhetherLocked(bus, asker, [then = std::move(then)](bool isLocked) {
        then(isLocked ? ScreenObstacle::locked : ScreenObstacle::notPermitted);
    });
}

void askWhetherLocked(SessionBus& bus, QObject* asker, std::function<void(bool isLocked)> then)
{
    bus.ask(callOf(screenSaver, QStringLiteral("/org/gnome/ScreenSaver"), screenSaver, "GetActive"),
            asker, [then = std::move(then)](const QDBusMessage& reply) {
                then(reply.signature() == u"b" && reply.arguments().at(0).toBool());
            });
}

MutterSession::MutterSession(SessionBus& bus, Events events) : mBus(bus), mEvents(std::move(events))
{
}

MutterSession::~MutterSession() { stop(); }

void MutterSession::stop()
{
    mIsStopped = true;
    if (!mSession.isEmpty())
        mBus.send(stopCall(std::exchange(mSession, QString())));
}

/// Goes on with a reply of that signature, else ends.
void MutterSession::use(const QDBusMessage& reply, const QString& signature,
                        void (MutterSession::*use)(const QDBusMessage& reply))
{
    if (mIsStopped)
        return;
    if (reply.type() == QDBusMessage::ReplyMessage && reply.signature() == signature)
        use ? (this->*use)(reply) : void();
    else
        findObstacle(mBus, this, reply, [this](ScreenObstacle obstacle) { end(obstacle); });
}

void MutterSession::call(const QDBusMessage& message, const QString& signature,
                         void (MutterSession::*next)(const QDBusMessage& reply))
{
    mBus.ask(message, this, [=, this](const QDBusMessage& reply) { use(reply, signature, next); });
}

void MutterSession::prepare()
{
    mBus.askForOwner(remoteDesktop, this, [this](const QString& owner) {
        mOwner = owner;
        if (!mIsStopped)
            create();
    });
}

void MutterSession::create()
{
    // Not asked by this object: a session that comes after its end must be stopped, too.
    mBus.ask(callOf(remoteDesktop, remoteDesktopPath, remoteDesktop, "CreateSession"), &mBus,
             [self = QPointer(this), bus = &mBus](const QDBusMessage& reply) {
                 if (self && !self->mIsStopped)
                     self->use(reply, QStringLiteral("o"), &MutterSession::useSession);
                 else if (reply.signature() == u"o")
                     bus->send(stopCall(pathIn(reply)));
             });
}

void MutterSession::useSession(const QDBusMessage& reply)
{
    mSession = pathIn(reply);
    call(identifierCall(mSession), QStringLiteral("v"), &MutterSession::useIdentifier);
}

void MutterSession::useIdentifier(const QDBusMessage& reply)
{
    const auto identifier = reply.arguments().at(0).value<QDBusVariant>().variant();
    auto create = callOf(screenCast, screenCastPath, screenCast, "CreateSession");
    call(create << QVariantMap{{QStringLiteral("remote-desktop-session-id"), identifier}},
         QStringLiteral("o"), &MutterSession::useScreenCast);
}

void MutterSession::useScreenCast(const QDBusMessage& reply)
{
    mScreenCast = pathIn(reply);
    auto record = callOf(screenCast, mScreenCast, screenCastSession, "RecordVirtual");
    call(record << QVariantMap{{QStringLiteral("cursor-mode"), pointerApart},
                               {QStringLiteral("is-platform"), true}},
         QStringLiteral("o"), &MutterSession::useStream);
}

void MutterSession::useStream(const QDBusMessage& reply)
{
    mStream = pathIn(reply);
    listen();
    mEvents.prepared();
}

void MutterSession::listen()
{
    const QString closed = QStringLiteral("Closed");
    auto connection = mBus.connection();
    connection.connect(mOwner, mSession, remoteSession, closed, this, SLOT(noticeClosing()));
    connection.connect(mOwner, mScreenCast, screenCastSession, closed, this, SLOT(noticeClosing()));
    connection.connect(mOwner, mStream, stream, QStringLiteral("PipeWireStreamAdded"), this,
                       SLOT(noticeNode(uint)));
    connection.connect(QStringLiteral("org.freedesktop.DBus"),
                       QStringLiteral("/org/freedesktop/DBus"),
                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameOwnerChanged"),
                       {mOwner}, QString(), this, SLOT(noticeOwner()));
    connect(&mBus, &SessionBus::disconnected, this, &MutterSession::noticeOwner);
}

void MutterSession::start()
{
    call(callOf(remoteDesktop, mSession, remoteSession, "Start"), QString(), nullptr);
}

/// Mutter makes a device for what comes first of each kind. Places mean nothing to it before
/// pictures are taken, and no keyboard has that key: so nothing happens to any window.
void MutterSession::makeDevices()
{
    notify("NotifyPointerMotionAbsolute", {mStream, 0.0, 0.0});
    // Mutter drops it, unless it is slow and the monitor has come: a finger that no user has, and
    // that must not stay down.
    notify("NotifyTouchDown", {mStream, fingerOfNobody, 0.0, 0.0});
    notify("NotifyTouchUp", {fingerOfNobody});
    notify("NotifyKeyboardKeycode", {unsigned{KEY_RESERVED}, true});
}

InputAbilities MutterSession::inputAbilities() const
{
    return {.pointer = true, .touch = true, .pen = false, .keys = true};
}

void MutterSession::notify(const char* member, const QVariantList& arguments)
{
    if (mSession.isEmpty() || !mEvents.ended)
        return;
    auto notice = callOf(remoteDesktop, mSession, remoteSession, member);
    notice.setArguments(arguments);
    mBus.send(notice);
}

void MutterSession::settle(std::function<void()> then)
{
    mBus.ask(identifierCall(mSession), this, [then = std::move(then)](const auto&) { then(); });
}

void MutterSession::noticeNode(unsigned node) { mEvents.started(node); }

void MutterSession::noticeClosing()
{
    askWhetherLocked(mBus, this, [this](bool isLocked) {
        end(isLocked ? ScreenObstacle::locked : ScreenObstacle::takenAway);
    });
}

void MutterSession::noticeOwner() { end(ScreenObstacle::gone); }

void MutterSession::end(ScreenObstacle reason)
{
    if (const auto ended = std::exchange(mEvents.ended, nullptr))
        ended(reason);
}

} // namespace farview
