#pragma once

#include "Platform/NetService.h"

#include <compare>
#include <functional>
#include <memory>
#include <string>
#include <variant>

namespace farview
{

class AvahiDaemonLink;

/// One way on which a service was seen; the numbers are the system's and Avahi's.
struct Sighting {
    int interfaceIndex = anyInterface;
    int protocol = anyProtocol;

    static constexpr int anyInterface = -1;
    static constexpr int anyProtocol = -1;
    static constexpr int IPv4 = 0;
    static constexpr int IPv6 = 1;

    auto operator<=>(const Sighting&) const = default;
};

/// What identifies a service on the network. `name` holds the bytes as they came; the domain has no
/// trailing dot.
struct ServiceName {
    std::string name;
    std::string type;
    std::string domain;
};

/// What one sighting of a service resolved to.
struct ResolvedSighting {
    std::string hostName;
    Data TXTRecord;
    Endpoint endpoint;
};

enum class ResolveFailure {
    noAnswer,   ///< nobody answered in time
    busy,       ///< the source cannot take more at the moment
    impossible, ///< asking again is of no use
};

using ResolveAnswer = std::variant<ResolvedSighting, ResolveFailure>;

/// Where knowledge of the network comes from. Reports on later turns of the loop only, never inside
/// a call. What a call returns keeps it going; its destruction, also from inside a report, ends it.
/// Main thread only.
class DiscoverySource
{
public:
    struct SearchEvents {
        std::function<void(const std::string& name, Sighting)> seen;
        std::function<void(const std::string& name, Sighting)> gone;
        /// Everything seen so far is void. The search begins anew by itself when it can.
        std::function<void()> lost;
    };
    struct RecordEvents {
        std::function<void(Sighting, const Data&)> seen;
        std::function<void(Sighting, const Data&)> gone;
    };

    virtual ~DiscoverySource() = default;

    virtual Subscription search(const std::string& type, const std::string& domain,
                                SearchEvents events) = 0;
    /// `addressProtocol`: which kind of address to ask for. Answers once.
    virtual Subscription resolve(const ServiceName& service, Sighting sighting, int addressProtocol,
                                 std::function<void(ResolveAnswer)> answer) = 0;
    /// The service's TXT records as they come and go.
    virtual Subscription watchTXTRecord(const ServiceName& service, RecordEvents events) = 0;
};

/// What the discovery daemon knows. Its searches survive the daemon's death and begin anew when one
/// is back.
std::shared_ptr<DiscoverySource> daemonSource(std::shared_ptr<AvahiDaemonLink> link);

} // namespace farview
