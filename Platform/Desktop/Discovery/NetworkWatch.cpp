#include "Platform/Desktop/Discovery/NetworkWatch.h"

#include <array>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace farview
{
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
