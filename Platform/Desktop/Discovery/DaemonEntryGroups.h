#pragma once

#include "Platform/Desktop/Discovery/AvahiDaemonLink.h"
#include "Platform/Desktop/Discovery/EntryGroup.h"

#include <memory>

namespace farview
{

/// Announces through the discovery daemon. Its groups end silently when the daemon goes.
class DaemonEntryGroups final : public EntryGroupMaker
{
public:
    explicit DaemonEntryGroups(std::shared_ptr<AvahiDaemonLink> link);

    std::unique_ptr<EntryGroup> announceHost(const std::string& host,
                                             const std::vector<HostAddress>& addresses,
                                             EntryGroup::StateChanged changed) override;
    std::unique_ptr<EntryGroup> announceService(const ServiceAnnouncement& announcement,
                                                const std::string& host,
                                                EntryGroup::StateChanged changed) override;

private:
    std::shared_ptr<AvahiDaemonLink> mLink;
};

} // namespace farview
