#pragma once

#include "Platform/RunLoop.h"
#include "Platform/Types/Data.h"
#include "Platform/Types/DiscoveryCondition.h"
#include "Platform/Types/Object.h"
#include "Platform/Types/Subscription.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

class NetService;

/// Hears what becomes of one service. Called on the main thread, never inside the call that caused
/// it.
class NetServiceDelegate
{
public:
    virtual ~NetServiceDelegate() = default;
    virtual void netServiceDidResolveAddress(const std::shared_ptr<NetService>& service) = 0;
    /// `error` is a short text for the log: why it could not be resolved.
    virtual void didNotResolve(const std::shared_ptr<NetService>& service,
                               const std::string& error) = 0;
    virtual void didUpdateTXTRecordData(const std::shared_ptr<NetService>& service,
                                        const Data& data) = 0;
};

/// A way to reach a service: a numeric address, the port of its record, and the interface on which
/// it was seen (0 when any will do).
struct Endpoint {
    std::string address;
    std::uint16_t port = 0;
    std::uint32_t interfaceIndex = 0;

    bool operator==(const Endpoint&) const = default;
};

/// One service on the network. The same object stands for it from its discovery to its removal.
/// Equal to another when name, type and domain are equal.
class NetService : public Object
{
public:
    /// As announced: any UTF-8 of at most 63 bytes, foreign text. Never trust it, show it plainly.
    virtual const std::string& name() const = 0;
    virtual const std::string& type() const = 0;
    virtual const std::string& domain() const = 0;
    /// The host that offers it, without a trailing dot. Nothing until it was resolved.
    virtual std::optional<std::string> hostName() const = 0;
    /// The latest TXT record; empty when none is known.
    virtual Data TXTRecordData() const = 0;
    /// What the last successful resolve gave; empty until then.
    virtual std::vector<Endpoint> endpoints() const = 0;

    virtual void setDelegate(std::weak_ptr<NetServiceDelegate> delegate) = 0;
    /// Begins to find host, port, address and TXT record; ends with one of the delegate's two
    /// calls, at the latest after `timeout`. A resolve that is under way is replaced.
    virtual void resolveWithTimeout(Duration timeout) = 0;
    /// Begins to report changes of the TXT record to the delegate. Idempotent.
    virtual void startMonitoring() = 0;
    virtual void stopMonitoring() = 0;

    bool isEqual(const Object& other) const override;

    /// The entries of a TXT record in wire form: length-prefixed "key=value" strings. Entries
    /// without a key are skipped, the first of two equal keys wins, an entry without "=" has an
    /// empty value. A record whose lengths run past its end gives what could be read.
    static std::map<std::string, Data> dictionaryFromTXTRecordData(const Data& data);
    /// The reverse, for those who announce.
    static Data dataFromTXTRecordDictionary(const std::map<std::string, Data>& dictionary);
};

class NetServiceBrowser;

/// Hears of services that come and go. Called on the main thread, never inside `searchFor…` or
/// `stop`.
class NetServiceBrowserDelegate
{
public:
    virtual ~NetServiceBrowserDelegate() = default;
    /// `moreComing`: more of the same batch follows at once. Finds and removals never share a
    /// batch.
    virtual void didFindService(NetServiceBrowser& browser,
                                const std::shared_ptr<NetService>& service, bool moreComing) = 0;
    /// `service` is the same object that was found.
    virtual void didRemoveService(NetServiceBrowser& browser,
                                  const std::shared_ptr<NetService>& service, bool moreComing) = 0;
};

/// A running search for the services of one type. It ends with `stop` or with its destruction.
class NetServiceBrowser : public Object
{
public:
    virtual void setDelegate(std::weak_ptr<NetServiceBrowserDelegate> delegate) = 0;
    /// `type` as "_name._udp", `domain` as "local.". A second call starts anew.
    virtual void searchForServicesOfType(const std::string& type, const std::string& domain) = 0;
    virtual void stop() = 0;
};

/// Finds services on the local network.
class Discovery
{
public:
    virtual ~Discovery() = default;

    virtual std::shared_ptr<NetServiceBrowser> makeBrowser() = 0;
    /// Looks again at services that may have died without saying goodbye; those that no longer
    /// answer are reported removed. Called when the panel opens, after a resume and after a failed
    /// connect.
    virtual void checkAgain() = 0;
    virtual DiscoveryCondition condition() const = 0;
    virtual Subscription observeCondition(std::function<void()> changed) = 0;
};

} // namespace farview
