#include "Platform/Desktop/Updates/DesktopNetworkCondition.h"

#include "Platform/Desktop/Bus/BusHandshake.h"
#include "Platform/Desktop/Discovery/AvahiDaemonLink.h"
#include "Platform/Types/NetworkKind.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QFile>
#include <QList>

#include <chrono>
#include <functional>
#include <memory>
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

/// What the properties say that NetworkManager has given (a map of texts and values).
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

/// One question to NetworkManager, which is not started for it. A library's call to a bus that
/// stopped would hold this program, so the bus is checked first. Made with `new`; deletes itself
/// after the answer. Main thread only.
class NetworkQuestion : public QObject
{
public:
    NetworkQuestion(QString busAddress, QObject* parent)
        : QObject(parent), mAddress(std::move(busAddress)), mConnectionName(freshName())
    {
    }

    ~NetworkQuestion() override { QDBusConnection::disconnectFromBus(mConnectionName); }

    /// Answers once, on a later turn, within some seconds: free of charge where nobody says
    /// otherwise.
    void ask(std::function<void(NetworkKind)> answer)
    {
        mAnswer = std::move(answer);
        mBusCheck =
            std::make_unique<BusCheck>(mAddress.toStdString(), patience, [this](BusAnswer bus) {
                bus == BusAnswer::answers ? askNetworkManager() : answerNow(NetworkKind::unmetered);
            });
    }

private:
    void askNetworkManager()
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
        auto* watcher =
            new QDBusPendingCallWatcher(connection.asyncCall(call, patienceOfCall), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this,
                [this, watcher] { answerNow(networkKindIn(watcher->reply())); });
    }

    void answerNow(NetworkKind kind)
    {
        deleteLater();
        if (const auto answer = std::exchange(mAnswer, nullptr))
            answer(kind);
    }

    QString mAddress;
    QString mConnectionName;
    std::unique_ptr<BusCheck> mBusCheck;
    std::function<void(NetworkKind)> mAnswer;
};

constexpr qint64 largestTable = 1024 * 1024;
constexpr unsigned routeIsUp = 0x0001;
constexpr unsigned routeRejects = 0x0200;

QList<QByteArray> linesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(largestTable).split('\n')
                                          : QList<QByteArray>();
}

bool isUsable(const QByteArray& flags)
{
    const unsigned bits = flags.toUInt(nullptr, 16);
    return (bits & routeIsUp) && !(bits & routeRejects);
}

/// "eth0 00000000 0102A8C0 0003 ...": interface, destination, gateway, flags.
bool leadsOut(const QByteArray& line)
{
    const auto fields = line.simplified().split(' ');
    return fields.size() > 3 && fields[1] == "00000000" && isUsable(fields[3]);
}

/// "000...0 00 000...0 00 gateway metric references uses flags eth0".
bool leadsOut6(const QByteArray& line)
{
    const auto fields = line.simplified().split(' ');
    return fields.size() > 9 && fields[0].count('0') == fields[0].size() && fields[1] == "00" &&
           fields[9] != "lo" && isUsable(fields[8]);
}

bool hasRoadOut(const NetworkPlaces& places)
{
    const auto lines = linesOf(places.routes);
    const auto lines6 = linesOf(places.routes6);
    return std::any_of(lines.begin(), lines.end(), leadsOut) ||
           std::any_of(lines6.begin(), lines6.end(), leadsOut6);
}

} // namespace

DesktopNetworkCondition::DesktopNetworkCondition(NetworkPlaces places) : mPlaces(std::move(places))
{
}

void DesktopNetworkCondition::ask(std::weak_ptr<void> target, Answer then)
{
    const auto answer = [target = std::move(target), then = std::move(then)](NetworkKind kind) {
        if (const auto kept = target.lock())
            then(kind);
    };
    if (!hasRoadOut(mPlaces))
        return answer(NetworkKind::absent);
    const QString address =
        mPlaces.busAddress.isEmpty() ? AvahiDaemonLink::systemBusAddress() : mPlaces.busAddress;
    auto* question = new NetworkQuestion(address, this);
    question->ask(answer);
}

} // namespace farview
