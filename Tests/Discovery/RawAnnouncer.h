#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Says things on the network, from host B, that no daemon would say for us: a service without a
/// host, names that are not UTF-8, records of any size.
class RawAnnouncer
{
public:
    using Bytes = std::string;

    struct Record {
        std::vector<Bytes> name;
        std::uint16_t type = 0;
        std::uint32_t seconds = 4500;
        Bytes data;
    };

    /// The instance is offered; nothing tells where.
    static Record pointer(const Bytes& instance, std::uint32_t seconds = 4500);
    static Record location(const Bytes& instance, const Bytes& host, std::uint16_t port);
    static Record text(const Bytes& instance, const Bytes& wireForm);
    static Record address(const Bytes& host, const std::vector<std::uint8_t>& IPv4);

    /// One multicast packet with these answers. False when it could not be sent.
    static bool send(const std::vector<Record>& records);
    /// One multicast packet with any content.
    static bool sendPacket(const Bytes& packet);
};
