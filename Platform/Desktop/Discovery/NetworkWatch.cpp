#include "Platform/Desktop/Discovery/NetworkWatch.h"

#include <array>
#include <ifaddrs.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace farview
{
namespace
{

struct FreeAddresses {
    void operator()(ifaddrs* list) const { ::freeifaddrs(list); }
};

bool isUsable(const ifaddrs& each)
{
    const bool hasAddress = each.ifa_addr && (each.ifa_addr->sa_family == AF_INET ||
                                              each.ifa_addr->sa_family == AF_INET6);
    return hasAddress && (each.ifa_flags & IFF_UP) != 0 &&
           (each.ifa_flags & (IFF_MULTICAST | IFF_LOOPBACK)) != 0;
}

} // namespace

bool hasUsableNetwork()
{
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0)
        return false;
    const std::unique_ptr<ifaddrs, FreeAddresses> list(first);
    for (const auto* each = first; each; each = each->ifa_next) {
        if (isUsable(*each))
            return true;
    }
    return false;
}

NetworkWatch::NetworkWatch(std::function<void()> changed) : mChanged(std::move(changed))
{
    mSocket = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
    if (mSocket < 0)
        return;
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
    if (::bind(mSocket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return;
    mNotifier = std::make_unique<QSocketNotifier>(mSocket, QSocketNotifier::Read);
    connect(mNotifier.get(), &QSocketNotifier::activated, this, [this] {
        drain();
        mChanged();
    });
}

NetworkWatch::~NetworkWatch()
{
    mNotifier.reset();
    if (mSocket >= 0)
        ::close(mSocket);
}

/// What changed is asked for anew, so the messages only matter as a sign.
void NetworkWatch::drain() const
{
    std::array<char, 8192> buffer;
    while (::recv(mSocket, buffer.data(), buffer.size(), MSG_TRUNC) > 0) {
    }
}

} // namespace farview
