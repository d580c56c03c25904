#pragma once

#include <compare>
#include <string>
#include <vector>

namespace farview
{

/// One numeric address of this computer and the interface that has it.
struct HostAddress {
    int interfaceIndex = 0;
    std::string address;
    bool isLoopback = false;

    auto operator<=>(const HostAddress&) const = default;
};

/// The addresses of all interfaces that are up and can carry multicast, in a stable order.
std::vector<HostAddress> hostAddresses();

/// Those by which others can reach this computer; the loopback's when it has no others.
std::vector<HostAddress> announceableAddresses();

} // namespace farview
