#include "Platform/Desktop/Screens/Portal/PortalSession.h"

#include <QByteArrayView>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QRandomGenerator>

#include <fcntl.h>
#include <limits>
#include <utility>

namespace farview
{
namespace
{

const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
const QString sessionInterface = QStringLiteral("org.freedesktop.portal.Session");

enum Response : unsigned { granted = 0, refused = 1 };
enum Device : unsigned { keyboard = 1, pointer = 2, touchScreen = 4 };
constexpr unsigned untilRevoked = 2;

constexpr int unlimited = std::numeric_limits<int>::max(); // milliseconds

constexpr qsizetype longestWord = 256;
constexpr int longestSide = 32'767;

QVariant pathValue(const QString& path) { return QVariant::fromValue(QDBusObjectPath(path)); }

struct Pair {
    int first = 0;
    int second = 0;
};

std::optional<Pair> pairIn(const QVariant& value)
{
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != u"(ii)")
        return std::nullopt;
    Pair pair;
    argument.beginStructure();
    argument >> pair.first >> pair.second;
    return pair;
}

bool isWithin(int least, int number) { return number >= least && number <= longestSide; }

/// Nothing where the portal does not say it, or says what cannot be.
std::optional<PixelRect> areaIn(const QVariantMap& stream)
{
    const auto size = pairIn(stream.value(QStringLiteral("size")));
    const auto corner = pairIn(stream.value(QStringLiteral("position"))).value_or(Pair{});
    if (!size || !isWithin(1, size->first) || !isWithin(1, size->second) ||
        !isWithin(-longestSide, corner.first) || !isWithin(-longestSide, corner.second))
        return std::nullopt;
    return pixelRect(corner.first, corner.second, size->first, size->second);
}

struct Stream {
    unsigned node = 0;
    QVariantMap properties;
};

/// The first one: more were not asked for.
std::optional<Stream> streamIn(const QVariantMap& results)
{
    const auto streams = results.value(QStringLiteral("streams")).value<QDBusArgument>();
    if (streams.currentSignature() != u"a(ua{sv})")
        return std::nullopt;
    streams.beginArray();
    if (streams.atEnd())
        return std::nullopt;
    Stream stream;
    streams.beginStructure();
    streams >> stream.node >> stream.properties;
    return stream;
}

FileDescriptor copyOf(const QDBusMessage& reply)
{
    if (reply.signature() != u"h")
        return {};
    const auto file = reply.arguments().at(0).value<QDBusUnixFileDescriptor>();
    return FileDescriptor(::fcntl(file.fileDescriptor(), F_DUPFD_CLOEXEC, 0));
}

/// The portal has other types than Mutter, and does not ask what scrolls.
QVariantList argumentsOf(const QByteArrayView member, QVariantList arguments)
{
    if (member == "NotifyPointerAxis")
        arguments.removeLast();
    if (member.startsWith("NotifyKeyboard"))
        arguments[0] = arguments[0].toInt();
    for (auto& argument : arguments)
        if (argument.typeId() == QMetaType::Bool)
            argument = argument.toUInt();
    return arguments;
}

} // namespace

PortalSession::PortalSession(SessionBus& bus, PortalMemory memory, Events events)
    : mBus(bus), mMemory(std::move(memory)), mEvents(std::move(events))
{
}

const QString& PortalSession::interface() const
{
    return mPlan.devices ? portalRemoteDesktop : portalScreenCast;
}

void PortalSession::begin(const std::string& name, bool wantsInput)
{
    mName = name;
    askPortal(mBus, this, [this, wantsInput](const auto& offer) { follow(offer, wantsInput); });
}

void PortalSession::follow(const PortalOffer& offer, bool wantsInput)
{
    mPlan = portalPlan(offer, wantsInput);
    if (offer.obstacle || !mPlan.source)
        return end(offer.obstacle.value_or(ScreenObstacle::protocolMissing));
    mOwner = offer.owner;
    if (mPlan.remembers)
        mWord = mMemory.word(mName);
    mBus.connection().connect(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameOwnerChanged"), {mOwner},
        QString(), this, SLOT(noticeOwner()));
    connect(&mBus, &SessionBus::disconnected, this, &PortalSession::noticeOwner);
    create();
}

// --- questions -------------------------------------------------------------------------------

/// As the portal makes paths of names that we choose, so that nothing is lost before it answers.
QString PortalSession::newPath(const char* kind, QString* token) const
{
    *token =
        QStringLiteral("farview%1").arg(QRandomGenerator::securelySeeded().generate64(), 0, 16);
    const QString sender = mBus.uniqueName().mid(1).replace(u'.', u'_');
    return QStringLiteral("/org/freedesktop/portal/desktop/%1/%2/%3")
        .arg(QLatin1String(kind), sender, *token);
}

void PortalSession::listenTo(const QString& path, const QString& interface, const char* signal,
                             const char* slot)
{
    mBus.connection().connect(mOwner, path, interface, QLatin1String(signal), this, slot);
}

void PortalSession::request(const QString& interface, const char* member,
                            const QVariantList& arguments, QVariantMap options, Next next)
{
    QString token;
    mRequest = newPath("request", &token);
    mNext = next;
    listenTo(mRequest, requestInterface, "Response",
             SLOT(noticeResponse(uint, QVariantMap, QDBusMessage)));
    options[QStringLiteral("handle_token")] = token;
    auto call = portalCall(interface, member);
    call.setArguments(arguments + QVariantList{options});
    mBus.ask(
        call, this,
        [this, asked = mRequest](const QDBusMessage& reply) {
            if (reply.type() == QDBusMessage::ErrorMessage && asked == mRequest)
                fail(ScreenObstacle::failed);
        },
        unlimited);
}

void PortalSession::noticeResponse(unsigned code, const QVariantMap& results,
                                   const QDBusMessage& message)
{
    if (message.path() != mRequest)
        return;
    mRequest.clear();
    if (code == granted)
        (this->*mNext)(results);
    else if (code == refused)
        end(ScreenObstacle::declined);
    else
        fail(ScreenObstacle::failed);
}

// --- the way to a stream ---------------------------------------------------------------------

void PortalSession::create()
{
    QString token;
    mSession = newPath("session", &token);
    listenTo(mSession, sessionInterface, "Closed", SLOT(noticeClosing(QVariantMap, QDBusMessage)));
    request(interface(), "CreateSession", {}, {{QStringLiteral("session_handle_token"), token}},
            mPlan.devices ? &PortalSession::selectDevices : &PortalSession::selectSources);
}

void PortalSession::selectDevices(const QVariantMap&)
{
    request(portalRemoteDesktop, "SelectDevices", {pathValue(mSession)},
            lasting({{QStringLiteral("types"), mPlan.devices}}), &PortalSession::selectSources);
}

/// Some portals ask the user now.
void PortalSession::selectSources(const QVariantMap&)
{
    QVariantMap options{{QStringLiteral("types"), mPlan.source}};
    if (mPlan.cursorMode)
        options[QStringLiteral("cursor_mode")] = mPlan.cursorMode;
    request(portalScreenCast, "SelectSources", {pathValue(mSession)},
            mPlan.devices ? options : lasting(options), &PortalSession::start);
    mEvents.asks();
}

QVariantMap PortalSession::lasting(QVariantMap options) const
{
    if (mPlan.remembers)
        options[QStringLiteral("persist_mode")] = untilRevoked;
    if (!mWord.empty())
        options[QStringLiteral("restore_token")] = QString::fromStdString(mWord);
    return options;
}

void PortalSession::start(const QVariantMap&)
{
    request(interface(), "Start", {pathValue(mSession), QString()}, {}, &PortalSession::useStart);
}

void PortalSession::useStart(const QVariantMap& results)
{
    const auto stream = streamIn(results);
    if (!stream)
        return fail(ScreenObstacle::failed);
    mNode = stream->node;
    mDevices = results.value(QStringLiteral("devices")).toUInt() & mPlan.devices;
    if (mPlan.remembers) {
        const auto word = results.value(QStringLiteral("restore_token")).toString();
        mMemory.keep(mName, word.size() <= longestWord ? word.toStdString() : std::string());
    }
    mWord.clear();
    openRemote(areaIn(stream->properties));
}

void PortalSession::openRemote(std::optional<PixelRect> area)
{
    auto call = portalCall(portalScreenCast, "OpenPipeWireRemote");
    call.setArguments({pathValue(mSession), QVariantMap()});
    mBus.ask(call, this, [this, area](const QDBusMessage& reply) {
        auto remote = copyOf(reply);
        if (!remote.isOpen())
            return end(ScreenObstacle::failed);
        mIsStarted = true;
        if (!mIsOver)
            mEvents.started({{mNode, std::move(remote), mPlan.isPointerApart}, area, mPlan});
    });
}

// --- input -----------------------------------------------------------------------------------

InputAbilities PortalSession::inputAbilities() const
{
    return {.pointer = (mDevices & pointer) != 0,
            .touch = (mDevices & touchScreen) != 0,
            .pen = false,
            .keys = (mDevices & keyboard) != 0};
}

void PortalSession::notify(const char* member, const QVariantList& arguments)
{
    if (mIsOver || !mIsStarted || !mDevices)
        return;
    auto notice = portalCall(portalRemoteDesktop, member);
    notice.setArguments(QVariantList{pathValue(mSession), QVariantMap()} +
                        argumentsOf(member, arguments));
    mBus.send(notice);
}

/// The portal passes calls on in their order.
void PortalSession::settle(std::function<void()> then)
{
    auto get = portalCall(QStringLiteral("org.freedesktop.DBus.Properties"), "Get");
    mBus.ask(get << portalRemoteDesktop << QStringLiteral("version"), this,
             [then = std::move(then)](const auto&) { then(); });
}

// --- the end ---------------------------------------------------------------------------------

void PortalSession::noticeClosing(const QVariantMap&, const QDBusMessage& message)
{
    if (message.path() == mSession)
        fail(mIsStarted ? ScreenObstacle::takenAway : ScreenObstacle::failed);
}

void PortalSession::noticeOwner() { end(ScreenObstacle::gone); }

/// Where a remembered word was of no use, the user is asked.
void PortalSession::fail(ScreenObstacle reason)
{
    if (mWord.empty())
        return end(reason);
    mWord.clear();
    mMemory.keep(mName, {});
    close();
    create();
}

void PortalSession::end(ScreenObstacle reason)
{
    if (std::exchange(mIsOver, true))
        return;
    close();
    mEvents.ended(reason);
}

void PortalSession::stop()
{
    mIsOver = true;
    close();
}

void PortalSession::close()
{
    for (const auto& [path, interface] :
         {std::pair(&mRequest, requestInterface), std::pair(&mSession, sessionInterface)}) {
        if (path->isEmpty())
            continue;
        mBus.send(QDBusMessage::createMethodCall(mOwner, std::exchange(*path, QString()), interface,
                                                 QStringLiteral("Close")));
    }
}

} // namespace farview
