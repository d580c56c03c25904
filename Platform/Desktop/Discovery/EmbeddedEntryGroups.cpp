#include "Platform/Desktop/Discovery/EmbeddedServer.h"
#include "Platform/Desktop/Discovery/EntryGroup.h"

#include <avahi-common/address.h>
#include <avahi-common/error.h>
#include <avahi-common/strlst.h>
#include <avahi-core/publish.h>

#include <QObject>
#include <QTimer>

#include <utility>

namespace farview
{
namespace
{

constexpr auto noFlags = AvahiPublishFlags{};
constexpr const char* localDomain = "local";

struct FreeStrings {
    void operator()(AvahiStringList* list) const { avahi_string_list_free(list); }
};
using Strings = std::unique_ptr<AvahiStringList, FreeStrings>;

/// The library keeps such a list back to front.
Strings stringsOf(const ServiceAnnouncement& announcement)
{
    AvahiStringList* list = nullptr;
    for (const auto& entry : recordEntries(announcement.TXTRecord))
        list = avahi_string_list_add_arbitrary(
            list, reinterpret_cast<const std::uint8_t*>(entry.data()), entry.size());
    return Strings(list);
}

class Group final : public QObject, public EntryGroup
{
public:
    Group(std::shared_ptr<EmbeddedServer> server, StateChanged changed)
        : mServer(std::move(server)), mChanged(std::move(changed)),
          mGroup(avahi_s_entry_group_new(mServer->get(), hear, this))
    {
    }
    ~Group() override
    {
        if (mGroup)
            avahi_s_entry_group_free(mGroup);
    }

    void add(const std::string& host, const HostAddress& each)
    {
        AvahiAddress address;
        if (!mGroup || !avahi_address_parse(each.address.c_str(), AVAHI_PROTO_UNSPEC, &address))
            return;
        // A daemon on this computer announces the reverse of the same addresses.
        check(avahi_server_add_address(mServer->get(), mGroup, each.interfaceIndex,
                                       AVAHI_PROTO_UNSPEC, AVAHI_PUBLISH_NO_REVERSE, host.c_str(),
                                       &address));
    }

    void add(const ServiceAnnouncement& announcement, const std::string& host)
    {
        const auto record = stringsOf(announcement);
        if (mGroup)
            check(avahi_server_add_service_strlst(
                mServer->get(), mGroup, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, noFlags,
                announcement.name.c_str(), announcement.type.c_str(), localDomain, host.c_str(),
                announcement.port, record.get()));
    }

    void commit()
    {
        if (mGroup && mError == AVAHI_OK)
            check(avahi_s_entry_group_commit(mGroup));
        if (!mGroup || mError != AVAHI_OK)
            reportLater(stateOf(mError));
    }

    void updateTXTRecord(const ServiceAnnouncement& announcement) override
    {
        const auto record = stringsOf(announcement);
        if (mGroup)
            avahi_server_update_service_txt_strlst(
                mServer->get(), mGroup, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, noFlags,
                announcement.name.c_str(), announcement.type.c_str(), localDomain, record.get());
    }

private:
    void check(int status)
    {
        if (status < 0 && mError == AVAHI_OK)
            mError = status;
    }

    static State stateOf(int error)
    {
        switch (error) {
        case AVAHI_ERR_COLLISION:
            return State::collision;
        case AVAHI_ERR_INVALID_SERVICE_NAME:
        case AVAHI_ERR_INVALID_SERVICE_TYPE:
        case AVAHI_ERR_INVALID_HOST_NAME:
        case AVAHI_ERR_INVALID_DOMAIN_NAME:
        case AVAHI_ERR_INVALID_RECORD:
            return State::invalid;
        default:
            return State::failed;
        }
    }

    /// Comes inside the library's own work, where nothing may be freed.
    static void hear(AvahiServer*, AvahiSEntryGroup*, AvahiEntryGroupState state, void* self)
    {
        auto* group = static_cast<Group*>(self);
        if (state == AVAHI_ENTRY_GROUP_ESTABLISHED)
            group->reportLater(State::established);
        else if (state == AVAHI_ENTRY_GROUP_COLLISION)
            group->reportLater(State::collision);
        else if (state == AVAHI_ENTRY_GROUP_FAILURE)
            group->reportLater(State::failed);
    }

    void reportLater(State state)
    {
        QTimer::singleShot(0, this, [this, state] {
            const auto changed = mChanged;
            changed(state);
        });
    }

    std::shared_ptr<EmbeddedServer> mServer;
    StateChanged mChanged;
    AvahiSEntryGroup* mGroup;
    int mError = AVAHI_OK;
};

/// Announces by itself.
class EmbeddedEntryGroups final : public EntryGroupMaker
{
public:
    explicit EmbeddedEntryGroups(std::shared_ptr<EmbeddedServer> server)
        : mServer(std::move(server))
    {
    }

    std::unique_ptr<EntryGroup> announceHost(const std::string& host,
                                             const std::vector<HostAddress>& addresses,
                                             EntryGroup::StateChanged changed) override
    {
        auto group = std::make_unique<Group>(mServer, std::move(changed));
        for (const auto& address : addresses)
            group->add(host, address);
        group->commit();
        return group;
    }

    std::unique_ptr<EntryGroup> announceService(const ServiceAnnouncement& announcement,
                                                const std::string& host,
                                                EntryGroup::StateChanged changed) override
    {
        auto group = std::make_unique<Group>(mServer, std::move(changed));
        group->add(announcement, host);
        group->commit();
        return group;
    }

private:
    std::shared_ptr<EmbeddedServer> mServer;
};

} // namespace

std::unique_ptr<EntryGroupMaker> embeddedEntryGroups(std::shared_ptr<EmbeddedServer> server)
{
    return std::make_unique<EmbeddedEntryGroups>(std::move(server));
}

} // namespace farview
