#pragma once

#include "Platform/Types/Data.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace farview
{

/// Hears what becomes of an announcement. Called on the main thread, never inside a call to the
/// publisher.
class NetServicePublisherDelegate
{
public:
    virtual ~NetServicePublisherDelegate() = default;
    /// The network knows the service by this name now. Called again when it was announced anew,
    /// after a return of the discovery daemon for example.
    virtual void didPublish(const std::string& name) = 0;
    /// Somebody else has the name; `name` is tried instead.
    virtual void willRename(const std::string& name) = 0;
    /// The service is not announced. It may be later: the publisher goes on trying unless the
    /// announcement itself is at fault.
    virtual void didNotPublish(const std::string& reason) = 0;
};

/// A service to announce on the local network.
struct ServiceAnnouncement {
    /// At most 63 bytes of UTF-8, not empty.
    std::string name;
    /// As "_name._udp".
    std::string type;
    std::uint16_t port = 0;
    std::map<std::string, Data> TXTRecord = {};
    /// The first label of a host name of the service's own ("desk-display"), which is announced
    /// with this computer's addresses. Changed when somebody else has it.
    std::string hostName;
};

/// Announces one service until it is told to stop or destroyed; both say goodbye.
class NetServicePublisher
{
public:
    virtual ~NetServicePublisher() = default;

    virtual void setDelegate(std::weak_ptr<NetServicePublisherDelegate> delegate) = 0;
    /// Begins to announce. A second call replaces the first announcement.
    virtual void publish(const ServiceAnnouncement& announcement) = 0;
    virtual void updateTXTRecord(const std::map<std::string, Data>& record) = 0;
    virtual void stop() = 0;
};

} // namespace farview
