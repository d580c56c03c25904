#pragma once

#include "Platform/NetService.h"

#include <QHostAddress>

#include <cstdint>
#include <vector>

namespace farview
{

/// One address to try.
struct LinkCandidate {
    QHostAddress address;
    std::uint16_t port = 0;

    /// Qt's own comparison overlooks the zone.
    bool operator==(const LinkCandidate& other) const
    {
        return address == other.address && address.scopeId() == other.address.scopeId() &&
               port == other.port;
    }
};

/// The addresses to try for these endpoints, in their order, each once, at most 32: an IPv6
/// link-local address goes to its own zone, else to the interface on which it was seen, else to
/// each of `interfaces`. What is no numeric address with a port is left out.
std::vector<LinkCandidate> linkCandidates(const std::vector<Endpoint>& endpoints,
                                          const std::vector<std::uint32_t>& interfaces);

/// The indices of the interfaces that are up, loopback left out.
std::vector<std::uint32_t> usableInterfaces();

} // namespace farview
