#include "Platform/Desktop/Updates/NetworkQuestion.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>

#include <chrono>
#include <utility>

namespace farview
{
namespace
{

constexpr std::chrono::seconds patience{2};
constexpr int patienceOfCall = 2000; // milliseconds

const QString service = QStringLiteral("org.freedesktop.NetworkManager");

// As NetworkManager counts them.
enum Metered : unsigned { meteredYes = 1, meteredGuessYes = 3 };
enum Connectivity : unsigned { connectivityUnknown = 0, connectivityFull = 4 };

QString freshName()
{
    static unsigned count = 0;
    return QStringLiteral("farview-network-%1-%2").arg(quintptr(&count), 0, 16).arg(++count);
}

} // namespace

NetworkKind networkKindIn(const QDBusMessage& reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"a{sv}")
        return NetworkKind::unmetered;
    const auto properties = qdbus_cast<QVariantMap>(reply.arguments().constFirst());
    const unsigned connectivity = properties.value(QStringLiteral("Connectivity")).toUInt();
    if (connectivity != connectivityUnknown && connectivity < connectivityFull)
        return NetworkKind::absent;
    const unsigned metered = properties.value(QStringLiteral("Metered")).toUInt();
    return metered == meteredYes || metered == meteredGuessYes ? NetworkKind::metered
                                                               : NetworkKind::unmetered;
}

NetworkQuestion::NetworkQuestion(QString busAddress, QObject* parent)
    : QObject(parent), mAddress(std::move(busAddress)), mConnectionName(freshName())
{
}

NetworkQuestion::~NetworkQuestion() { QDBusConnection::disconnectFromBus(mConnectionName); }

void NetworkQuestion::ask(std::function<void(NetworkKind)> answer)
{
    mAnswer = std::move(answer);
    mBusCheck = std::make_unique<BusCheck>(mAddress.toStdString(), patience, [this](BusAnswer bus) {
        bus == BusAnswer::answers ? askNetworkManager() : answerNow(NetworkKind::unmetered);
    });
}

void NetworkQuestion::askNetworkManager()
{
    const auto connection = QDBusConnection::connectToBus(mAddress, mConnectionName);
    // Without one the library would never answer.
    if (!connection.isConnected())
        return answerNow(NetworkKind::unmetered);
    auto call = QDBusMessage::createMethodCall(
        service, QStringLiteral("/org/freedesktop/NetworkManager"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"));
    call << service;
    call.setAutoStartService(false);
    auto* watcher = new QDBusPendingCallWatcher(connection.asyncCall(call, patienceOfCall), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, watcher] { answerNow(networkKindIn(watcher->reply())); });
}

void NetworkQuestion::answerNow(NetworkKind kind)
{
    deleteLater();
    if (const auto answer = std::exchange(mAnswer, nullptr))
        answer(kind);
}

} // namespace farview
