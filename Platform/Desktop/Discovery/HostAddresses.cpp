#include "Platform/Desktop/Discovery/HostAddresses.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace farview
{
namespace
{

struct FreeAddresses {
    void operator()(ifaddrs* list) const { ::freeifaddrs(list); }
};

std::string textOf(const sockaddr* address)
{
    std::array<char, INET6_ADDRSTRLEN> buffer{};
    const void* bytes =
        address->sa_family == AF_INET6
            ? static_cast<const void*>(&reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr)
            : static_cast<const void*>(&reinterpret_cast<const sockaddr_in*>(address)->sin_addr);
    return ::inet_ntop(address->sa_family, bytes, buffer.data(), buffer.size()) ? buffer.data()
                                                                                : "";
}

bool isUsable(const ifaddrs& each)
{
    const bool hasAddress = each.ifa_addr && (each.ifa_addr->sa_family == AF_INET ||
                                              each.ifa_addr->sa_family == AF_INET6);
    return hasAddress && (each.ifa_flags & IFF_UP) != 0 &&
           (each.ifa_flags & (IFF_MULTICAST | IFF_LOOPBACK)) != 0;
}

} // namespace

std::vector<HostAddress> hostAddresses()
{
    std::vector<HostAddress> addresses;
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0)
        return addresses;
    const std::unique_ptr<ifaddrs, FreeAddresses> list(first);
    for (const auto* each = first; each; each = each->ifa_next) {
        if (isUsable(*each))
            addresses.push_back({static_cast<int>(::if_nametoindex(each->ifa_name)),
                                 textOf(each->ifa_addr), (each->ifa_flags & IFF_LOOPBACK) != 0});
    }
    std::sort(addresses.begin(), addresses.end());
    return addresses;
}

std::vector<HostAddress> announceableAddresses()
{
    auto addresses = hostAddresses();
    const auto isLoopback = [](const HostAddress& each) { return each.isLoopback; };
    if (!std::all_of(addresses.begin(), addresses.end(), isLoopback))
        std::erase_if(addresses, isLoopback);
    return addresses;
}

} // namespace farview
