#include "Tests/Discovery/RawAnnouncer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <net/if.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using Bytes = RawAnnouncer::Bytes;

constexpr std::uint16_t multicastPort = 5353;
constexpr std::uint16_t addressType = 1;
constexpr std::uint16_t pointerType = 12;
constexpr std::uint16_t textType = 16;
constexpr std::uint16_t locationType = 33;
constexpr std::uint16_t internet = 1;

Bytes number(std::uint32_t value, int size)
{
    Bytes bytes;
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<char>(value >> shift));
    return bytes;
}

Bytes encoded(const std::vector<Bytes>& labels)
{
    Bytes bytes;
    for (const auto& label : labels)
        bytes += number(static_cast<std::uint32_t>(label.size()), 1) + label;
    return bytes + number(0, 1);
}

std::vector<Bytes> instanceName(const Bytes& instance)
{
    return {instance, "_qlexvscreen", "_udp", "local"};
}

bool sendFromThisNetwork(const Bytes& packet)
{
    const int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const int yes = 1;
    ::setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    ::setsockopt(descriptor, SOL_SOCKET, SO_REUSEPORT, &yes, sizeof yes);
    const int hops = 255;
    ::setsockopt(descriptor, IPPROTO_IP, IP_MULTICAST_TTL, &hops, sizeof hops);
    ip_mreqn way{};
    way.imr_ifindex = static_cast<int>(::if_nametoindex("vB"));
    ::setsockopt(descriptor, IPPROTO_IP, IP_MULTICAST_IF, &way, sizeof way);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(multicastPort);
    if (::bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
        return false;
    ::inet_pton(AF_INET, "224.0.0.251", &address.sin_addr);
    return ::sendto(descriptor, packet.data(), packet.size(), 0,
                    reinterpret_cast<sockaddr*>(&address),
                    sizeof address) == static_cast<ssize_t>(packet.size());
}

} // namespace

RawAnnouncer::Record RawAnnouncer::pointer(const Bytes& instance, std::uint32_t seconds)
{
    return {
        {"_qlexvscreen", "_udp", "local"}, pointerType, seconds, encoded(instanceName(instance))};
}

RawAnnouncer::Record RawAnnouncer::location(const Bytes& instance, const Bytes& host,
                                            std::uint16_t port)
{
    return {instanceName(instance), locationType, 120,
            number(0, 4) + number(port, 2) + encoded({host, "local"})};
}

RawAnnouncer::Record RawAnnouncer::text(const Bytes& instance, const Bytes& wireForm)
{
    return {instanceName(instance), textType, 4500, wireForm};
}

RawAnnouncer::Record RawAnnouncer::address(const Bytes& host, const std::vector<std::uint8_t>& IPv4)
{
    return {{host, "local"}, addressType, 120, {IPv4.begin(), IPv4.end()}};
}

bool RawAnnouncer::send(const std::vector<Record>& records)
{
    // Identity 0, an authoritative answer, no question.
    Bytes packet = number(0, 2) + number(0x8400, 2) + number(0, 2) +
                   number(static_cast<std::uint32_t>(records.size()), 2) + number(0, 4);
    for (const auto& record : records)
        packet += encoded(record.name) + number(record.type, 2) + number(internet, 2) +
                  number(record.seconds, 4) +
                  number(static_cast<std::uint32_t>(record.data.size()), 2) + record.data;
    return sendPacket(packet);
}

bool RawAnnouncer::sendPacket(const Bytes& packet)
{
    const pid_t child = ::fork();
    if (child == 0) {
        const int network = ::open("/run/netns/B", O_RDONLY | O_CLOEXEC);
        const bool isThere = network >= 0 && ::setns(network, CLONE_NEWNET) == 0;
        ::_exit(isThere && sendFromThisNetwork(packet) ? 0 : 1);
    }
    int status = 1;
    return ::waitpid(child, &status, 0) == child && status == 0;
}
