#include "Platform/Desktop/Discovery/AvahiDaemonObject.h"
#include "Platform/Desktop/Discovery/EntryGroup.h"

#include <QDBusArgument>

#include <avahi-common/defs.h>

#include <utility>

namespace farview
{
namespace
{

constexpr int any = -1;
constexpr unsigned noFlags = 0;
/// The daemon announces the reverse of the same addresses for its own host name.
constexpr unsigned addressFlags = AVAHI_PUBLISH_NO_REVERSE;
const QString localDomain = QStringLiteral("local");

struct Call {
    QString member;
    QVariantList arguments;
};

QString text(const std::string& bytes) { return QString::fromStdString(bytes); }

QVariant recordArgument(const ServiceAnnouncement& announcement)
{
    QDBusArgument entries;
    entries.beginArray(QMetaType::fromType<QByteArray>());
    for (const auto& entry : recordEntries(announcement.TXTRecord))
        entries << QByteArray::fromStdString(entry);
    entries.endArray();
    return QVariant::fromValue(entries);
}

Call addAddress(const std::string& host, const HostAddress& address)
{
    return {QStringLiteral("AddAddress"),
            {address.interfaceIndex, any, addressFlags, text(host), text(address.address)}};
}

Call addService(const ServiceAnnouncement& announcement, const std::string& host)
{
    return {QStringLiteral("AddService"),
            {any, any, noFlags, text(announcement.name), text(announcement.type), localDomain,
             text(host), QVariant::fromValue<ushort>(announcement.port),
             recordArgument(announcement)}};
}

EntryGroup::State stateOf(const QString& error)
{
    if (error.contains(QLatin1String("Collision")))
        return EntryGroup::State::collision;
    return error.contains(QLatin1String(".Invalid")) ? EntryGroup::State::invalid
                                                     : EntryGroup::State::failed;
}

class Group final : public EntryGroup
{
public:
    Group(std::shared_ptr<AvahiDaemonLink> link, std::vector<Call> calls, StateChanged changed)
        : mLink(std::move(link)), mCalls(std::move(calls)), mChanged(std::move(changed))
    {
        AvahiDaemonObject::Events events;
        events.signal = [this](const QDBusMessage& signal) { hear(signal); };
        events.ready = [this] { fill(); };
        events.refused = [this](const QString& error) { report(stateOf(error)); };
        mObject = std::make_shared<AvahiDaemonObject>(
            *mLink, QStringLiteral("org.freedesktop.Avahi.EntryGroup"), std::move(events));
        mObject->prepare(AvahiDaemonLink::serverCall(QStringLiteral("EntryGroupNew")));
    }

    void updateTXTRecord(const ServiceAnnouncement& announcement) override
    {
        for (auto& each : mCalls) {
            if (each.member == QLatin1String("AddService"))
                each.arguments.back() = recordArgument(announcement);
        }
        if (mObject->isReady())
            call({QStringLiteral("UpdateServiceTxt"),
                  {any, any, noFlags, text(announcement.name), text(announcement.type), localDomain,
                   recordArgument(announcement)}});
    }

private:
    void fill()
    {
        for (const auto& each : mCalls)
            call(each);
        call({QStringLiteral("Commit"), {}});
    }

    void call(const Call& call)
    {
        auto message = mObject->message(call.member);
        message.setArguments(call.arguments);
        mLink->call(message, [this, alive = std::weak_ptr(mObject),
                              isUpdate = call.member.startsWith(QLatin1String("Update"))](
                                 const QDBusMessage& reply) {
            if (!alive.expired() && !isUpdate && reply.type() != QDBusMessage::ReplyMessage)
                report(stateOf(reply.errorName()));
        });
    }

    void hear(const QDBusMessage& signal)
    {
        if (signal.member() != QLatin1String("StateChanged") ||
            signal.signature() != QLatin1String("is"))
            return;
        switch (signal.arguments().at(0).toInt()) {
        case AVAHI_ENTRY_GROUP_ESTABLISHED:
            report(State::established);
            break;
        case AVAHI_ENTRY_GROUP_COLLISION:
            report(State::collision);
            break;
        case AVAHI_ENTRY_GROUP_FAILURE:
            report(State::failed);
            break;
        default:
            break;
        }
    }

    /// One failure is enough: the calls behind the one that failed fail too.
    void report(State state)
    {
        if (mHasFailed)
            return;
        mHasFailed = state != State::established;
        const auto changed = mChanged;
        changed(state);
    }

    std::shared_ptr<AvahiDaemonLink> mLink;
    std::vector<Call> mCalls;
    StateChanged mChanged;
    std::shared_ptr<AvahiDaemonObject> mObject;
    bool mHasFailed = false;
};

/// Announces through the discovery daemon. Its groups end silently when the daemon goes.
class DaemonEntryGroups final : public EntryGroupMaker
{
public:
    explicit DaemonEntryGroups(std::shared_ptr<AvahiDaemonLink> link) : mLink(std::move(link)) {}

    std::unique_ptr<EntryGroup> announceHost(const std::string& host,
                                             const std::vector<HostAddress>& addresses,
                                             EntryGroup::StateChanged changed) override
    {
        std::vector<Call> calls;
        for (const auto& address : addresses)
            calls.push_back(addAddress(host, address));
        return std::make_unique<Group>(mLink, std::move(calls), std::move(changed));
    }

    std::unique_ptr<EntryGroup> announceService(const ServiceAnnouncement& announcement,
                                                const std::string& host,
                                                EntryGroup::StateChanged changed) override
    {
        return std::make_unique<Group>(mLink, std::vector{addService(announcement, host)},
                                       std::move(changed));
    }

private:
    std::shared_ptr<AvahiDaemonLink> mLink;
};

} // namespace

std::unique_ptr<EntryGroupMaker> daemonEntryGroups(std::shared_ptr<AvahiDaemonLink> link)
{
    return std::make_unique<DaemonEntryGroups>(std::move(link));
}

} // namespace farview
