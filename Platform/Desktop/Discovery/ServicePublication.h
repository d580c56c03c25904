#pragma once

#include "Platform/Desktop/Discovery/EntryGroup.h"

#include <functional>
#include <memory>
#include <string>

namespace farview
{

/// One announcement by one maker: first the host, then its service; each gets another name while
/// somebody else has it. Withdrawn by destruction.
class ServicePublication
{
public:
    struct Events {
        std::function<void(const std::string& name)> published;
        std::function<void(const std::string& name)> renamed;
        /// `isFinal`: trying again is of no use.
        std::function<void(const std::string& reason, bool isFinal)> failed;
    };

    ServicePublication(EntryGroupMaker& maker, ServiceAnnouncement announcement, Events events);

    /// Announces the host with these addresses, then the service.
    void begin(std::vector<HostAddress> addresses);
    /// The addresses changed: the host is announced anew, the service stays.
    void setAddresses(std::vector<HostAddress> addresses);
    void updateTXTRecord(const std::map<std::string, Data>& record);
    /// With the names of the moment.
    const ServiceAnnouncement& announcement() const { return mAnnouncement; }

private:
    void announceHost();
    void announceService();
    void handleHost(EntryGroup::State state);
    void handleService(EntryGroup::State state);
    void fail(EntryGroup::State state, const std::string& what);
    bool mayRename();
    std::string host() const { return mAnnouncement.hostName + ".local"; }

    EntryGroupMaker& mMaker;
    ServiceAnnouncement mAnnouncement;
    Events mEvents;
    std::vector<HostAddress> mAddresses;
    std::unique_ptr<EntryGroup> mHost;
    std::unique_ptr<EntryGroup> mService;
    int mRenames = 0;
};

} // namespace farview
