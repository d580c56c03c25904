#pragma once

#include <QByteArray>
#include <QSocketNotifier>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <linux/if_packet.h>
#include <net/if.h>
#include <netinet/ip.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace farview
{

/// All that TCP carries on the loopback interface to and from one port, for as long as it lives, in
/// the order in which it was sent. IPv4 only.
class LinkCapture
{
public:
    explicit LinkCapture(std::uint16_t port)
        : mPort(htons(port)),
          mSocket(::socket(AF_PACKET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, htons(0x0800))),
          mNotifier(mSocket, QSocketNotifier::Read)
    {
        sockaddr_ll place{};
        place.sll_family = AF_PACKET;
        place.sll_protocol = htons(0x0800);
        place.sll_ifindex = static_cast<int>(::if_nametoindex("lo"));
        constexpr int size = 32 << 20;
        ::setsockopt(mSocket, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size);
        EXPECT_EQ(::bind(mSocket, reinterpret_cast<sockaddr*>(&place), sizeof place), 0);
        QObject::connect(&mNotifier, &QSocketNotifier::activated, &mNotifier, [this] { read(); });
    }
    ~LinkCapture() { ::close(mSocket); }
    LinkCapture(const LinkCapture&) = delete;
    LinkCapture& operator=(const LinkCapture&) = delete;

    /// What went to the port, and what came from it.
    std::pair<QByteArray, QByteArray> streams()
    {
        read();
        tpacket_stats lost{};
        socklen_t size = sizeof lost;
        ::getsockopt(mSocket, SOL_PACKET, PACKET_STATISTICS, &lost, &size);
        EXPECT_EQ(lost.tp_drops, 0U);
        return {mToPort, mFromPort};
    }

private:
    void read()
    {
        sockaddr_ll from{};
        socklen_t size = sizeof from;
        for (;;) {
            const auto count = ::recvfrom(mSocket, mPacket.data(), mPacket.size(), 0,
                                          reinterpret_cast<sockaddr*>(&from), &size);
            if (count <= 0)
                return;
            // Each packet passes twice: as it leaves and as it arrives.
            if (from.sll_pkttype == PACKET_HOST)
                take(static_cast<std::size_t>(count));
        }
    }
    void take(std::size_t size)
    {
        const auto* ip = reinterpret_cast<const iphdr*>(mPacket.data());
        const std::size_t head = ip->ihl * 4U;
        if (ip->protocol != IPPROTO_TCP || size < head + sizeof(tcphdr))
            return;
        const auto* tcp = reinterpret_cast<const tcphdr*>(mPacket.data() + head);
        const std::size_t begin = head + tcp->doff * 4U;
        const auto payload = mPacket.data() + begin;
        const auto length = static_cast<qsizetype>(size - begin);
        if (tcp->dest == mPort)
            mToPort.append(payload, length);
        else if (tcp->source == mPort)
            mFromPort.append(payload, length);
    }

    std::uint16_t mPort; ///< as the network writes it
    int mSocket;
    QSocketNotifier mNotifier;
    std::array<char, 128 << 10> mPacket{};
    QByteArray mToPort;
    QByteArray mFromPort;
};

} // namespace farview
