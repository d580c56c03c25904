#include "Platform/Desktop/Discovery/AvahiDaemonObject.h"
#include "Platform/Desktop/Discovery/DiscoverySource.h"
#include "Platform/Desktop/Discovery/ServiceNames.h"

#include <QDBusArgument>
#include <QTimer>

#include <chrono>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace farview
{
namespace
{

constexpr unsigned noFlags = 0;
constexpr ushort internetClass = 1;
constexpr ushort textRecord = 16;
constexpr auto pauseBeforeRetry = std::chrono::milliseconds(500);

QString text(const std::string& bytes) { return QString::fromStdString(bytes); }

Data dataOf(const QByteArray& bytes) { return {{bytes.begin(), bytes.end()}}; }

Data recordOf(const QByteArrayList& entries)
{
    Data data;
    for (const auto& entry : entries) {
        const auto length = std::min<qsizetype>(entry.size(), 255);
        data.bytes.push_back(static_cast<std::uint8_t>(length));
        data.bytes.insert(data.bytes.end(), entry.begin(), entry.begin() + length);
    }
    return data;
}

Sighting sightingOf(const QDBusMessage& message)
{
    return {message.arguments().at(0).toInt(), message.arguments().at(1).toInt()};
}

ResolveFailure failureOf(const QString& error)
{
    if (error.contains(QLatin1String("TooMany")))
        return ResolveFailure::busy;
    if (error.contains(QLatin1String(".Invalid")))
        return ResolveFailure::impossible;
    return ResolveFailure::noAnswer;
}

ResolveAnswer answerOf(const QDBusMessage& reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage)
        return failureOf(reply.errorName());
    if (reply.signature() != QLatin1String("iissssisqaayu"))
        return ResolveFailure::impossible;
    const auto values = reply.arguments();
    ResolvedSighting resolved;
    resolved.hostName = withoutTrailingDot(values.at(5).toString().toStdString());
    resolved.TXTRecord = recordOf(qdbus_cast<QByteArrayList>(values.at(9)));
    resolved.endpoint = {values.at(7).toString().toStdString(),
                         static_cast<std::uint16_t>(values.at(8).toUInt()),
                         static_cast<std::uint32_t>(std::max(values.at(0).toInt(), 0))};
    return resolved;
}

/// One search, which begins anew with each daemon.
struct Search {
    std::string type;
    std::string domain;
    DiscoverySource::SearchEvents events;
    std::shared_ptr<AvahiDaemonObject> browser;

    void hear(const QDBusMessage& signal)
    {
        if (signal.signature() != QLatin1String("iisssu"))
            return;
        const auto name = signal.arguments().at(2).toString().toStdString();
        if (signal.member() == QLatin1String("ItemNew"))
            events.seen(name, sightingOf(signal));
        else if (signal.member() == QLatin1String("ItemRemove"))
            events.gone(name, sightingOf(signal));
    }
};

/// One watch for a TXT record.
struct Watch {
    DiscoverySource::RecordEvents events;
    std::shared_ptr<AvahiDaemonObject> browser;

    void hear(const QDBusMessage& signal)
    {
        if (signal.signature() != QLatin1String("iisqqayu"))
            return;
        const auto record = dataOf(signal.arguments().at(5).toByteArray());
        if (signal.member() == QLatin1String("ItemNew"))
            events.seen(sightingOf(signal), record);
        else if (signal.member() == QLatin1String("ItemRemove"))
            events.gone(sightingOf(signal), record);
    }
};

/// What the discovery daemon knows. Its searches survive the daemon's death and begin anew when one
/// is back.
class AvahiDaemonSource final : public QObject, public DiscoverySource
{
public:
    explicit AvahiDaemonSource(std::shared_ptr<AvahiDaemonLink> link) : mLink(std::move(link))
    {
        connect(mLink.get(), &AvahiDaemonLink::presenceChanged, this,
                &AvahiDaemonSource::handlePresence);
    }

    Subscription search(const std::string& type, const std::string& domain,
                        SearchEvents events) override
    {
        const auto number = ++mLastSearch;
        auto search = std::make_shared<Search>(Search{type, domain, std::move(events), nullptr});
        mSearches[number] = search;
        if (mLink->presence() == AvahiDaemonLink::Presence::present)
            begin(search);
        return Subscription([this, number] { mSearches.erase(number); });
    }

    Subscription resolve(const ServiceName& service, Sighting sighting, int addressProtocol,
                         std::function<void(ResolveAnswer)> answer) override
    {
        auto request = AvahiDaemonLink::serverCall(QStringLiteral("ResolveService"));
        request << sighting.interfaceIndex << sighting.protocol << text(service.name)
                << text(service.type) << text(service.domain) << addressProtocol << noFlags;
        auto wanted = std::make_shared<bool>(true);
        mLink->call(request, [wanted, answer = std::move(answer)](const QDBusMessage& reply) {
            if (*wanted)
                answer(answerOf(reply));
        });
        return Subscription([wanted] { *wanted = false; });
    }

    Subscription watchTXTRecord(const ServiceName& service, RecordEvents events) override
    {
        auto watch = std::make_shared<Watch>(Watch{std::move(events), nullptr});
        const std::weak_ptr weak = watch;
        AvahiDaemonObject::Events objectEvents;
        objectEvents.signal = [weak](const QDBusMessage& signal) {
            if (const auto living = weak.lock())
                living->hear(signal);
        };
        objectEvents.ready = [this, weak] {
            if (const auto living = weak.lock())
                mLink->send(living->browser->message(QStringLiteral("Start")));
        };
        // The record is still read at each resolve; only its changes stay unseen.
        objectEvents.refused = [](const QString&) {};
        watch->browser = std::make_shared<AvahiDaemonObject>(
            *mLink, QStringLiteral("org.freedesktop.Avahi.RecordBrowser"), std::move(objectEvents));
        auto request = AvahiDaemonLink::serverCall(QStringLiteral("RecordBrowserPrepare"));
        request << Sighting::anyInterface << Sighting::anyProtocol << text(fullServiceName(service))
                << QVariant::fromValue(internetClass) << QVariant::fromValue(textRecord) << noFlags;
        watch->browser->prepare(request);
        return Subscription([watch]() mutable { watch.reset(); });
    }

private:
    void handlePresence()
    {
        const bool isPresent = mLink->presence() == AvahiDaemonLink::Presence::present;
        const auto searches = mSearches;
        for (const auto& [number, search] : searches) {
            if (isPresent)
                begin(search);
            else
                lose(*search);
        }
    }

    void begin(const std::shared_ptr<Search>& search)
    {
        const std::weak_ptr weak = search;
        AvahiDaemonObject::Events events;
        events.signal = [this, weak](const QDBusMessage& signal) {
            const auto living = weak.lock();
            if (living && signal.member() == QLatin1String("Failure")) {
                lose(*living);
                beginLater(weak);
            } else if (living) {
                living->hear(signal);
            }
        };
        events.ready = [this, weak] {
            if (const auto living = weak.lock())
                mLink->send(living->browser->message(QStringLiteral("Start")));
        };
        events.refused = [this, weak](const QString&) { beginLater(weak); };
        search->browser = std::make_shared<AvahiDaemonObject>(
            *mLink, QStringLiteral("org.freedesktop.Avahi.ServiceBrowser"), std::move(events));
        auto request = AvahiDaemonLink::serverCall(QStringLiteral("ServiceBrowserPrepare"));
        request << Sighting::anyInterface << Sighting::anyProtocol << text(search->type)
                << text(search->domain) << noFlags;
        search->browser->prepare(request);
    }

    /// A daemon that is just starting may refuse at first.
    void beginLater(const std::weak_ptr<Search>& search)
    {
        QTimer::singleShot(pauseBeforeRetry, this, [this, search, number = mLink->daemonNumber()] {
            const auto living = search.lock();
            if (living && number == mLink->daemonNumber() &&
                mLink->presence() == AvahiDaemonLink::Presence::present)
                begin(living);
        });
    }

    void lose(Search& search)
    {
        search.browser.reset();
        search.events.lost();
    }

    std::shared_ptr<AvahiDaemonLink> mLink;
    std::map<unsigned, std::shared_ptr<Search>> mSearches;
    unsigned mLastSearch = 0;
};

} // namespace

std::shared_ptr<DiscoverySource> daemonSource(std::shared_ptr<AvahiDaemonLink> link)
{
    return std::make_shared<AvahiDaemonSource>(std::move(link));
}

} // namespace farview
