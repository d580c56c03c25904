#pragma once

#include "Platform/Desktop/Discovery/HostAddresses.h"
#include "Platform/NetServicePublisher.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace farview
{

class AvahiDaemonLink;
class EmbeddedServer;

/// Records that are announced together: either a host's addresses or one service. Withdrawn, with a
/// goodbye, by destruction.
class EntryGroup
{
public:
    enum class State {
        established,
        collision, ///< somebody else has the name; the records are withdrawn
        invalid,   ///< the records can never be announced as they are
        failed,
    };
    /// Called on later turns only; the group may be destroyed inside.
    using StateChanged = std::function<void(State)>;

    virtual ~EntryGroup() = default;
    virtual void updateTXTRecord(const ServiceAnnouncement& announcement) = 0;
};

/// Where records can be announced.
class EntryGroupMaker
{
public:
    virtual ~EntryGroupMaker() = default;
    /// `host` is a full name ("desk.local").
    virtual std::unique_ptr<EntryGroup> announceHost(const std::string& host,
                                                     const std::vector<HostAddress>& addresses,
                                                     EntryGroup::StateChanged changed) = 0;
    virtual std::unique_ptr<EntryGroup> announceService(const ServiceAnnouncement& announcement,
                                                        const std::string& host,
                                                        EntryGroup::StateChanged changed) = 0;
};

/// Announces through the discovery daemon. Its groups end silently when the daemon goes.
std::unique_ptr<EntryGroupMaker> daemonEntryGroups(std::shared_ptr<AvahiDaemonLink> link);

/// Announces by itself.
std::unique_ptr<EntryGroupMaker> embeddedEntryGroups(std::shared_ptr<EmbeddedServer> server);

/// The entries "key=value" of a record, none longer than one may be.
std::vector<std::string> recordEntries(const std::map<std::string, Data>& record);

} // namespace farview
