#pragma once

#include "Platform/Desktop/Discovery/EmbeddedServer.h"
#include "Platform/Desktop/Discovery/EntryGroup.h"

#include <memory>

namespace farview
{

/// Announces by itself.
class EmbeddedEntryGroups final : public EntryGroupMaker
{
public:
    explicit EmbeddedEntryGroups(std::shared_ptr<EmbeddedServer> server);

    std::unique_ptr<EntryGroup> announceHost(const std::string& host,
                                             const std::vector<HostAddress>& addresses,
                                             EntryGroup::StateChanged changed) override;
    std::unique_ptr<EntryGroup> announceService(const ServiceAnnouncement& announcement,
                                                const std::string& host,
                                                EntryGroup::StateChanged changed) override;

private:
    std::shared_ptr<EmbeddedServer> mServer;
};

} // namespace farview
