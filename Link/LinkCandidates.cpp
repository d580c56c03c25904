#include "Link/LinkCandidates.h"

#include "Common/NSString_Additions.h"

#include <QNetworkInterface>

#include <algorithm>
#include <string>

namespace farview
{

namespace
{

constexpr std::size_t candidateLimit = 32;
constexpr std::size_t zoneLimit = 16;

void add(std::vector<LinkCandidate>& candidates, const LinkCandidate& candidate)
{
    const bool known =
        std::find(candidates.begin(), candidates.end(), candidate) != candidates.end();
    if (!known && candidates.size() < candidateLimit)
        candidates.push_back(candidate);
}

LinkCandidate inZone(QHostAddress address, const std::string& zone, std::uint16_t port)
{
    address.setScopeId(QString::fromStdString(zone));
    return {address, port};
}

} // namespace

std::vector<LinkCandidate> linkCandidates(const std::vector<Endpoint>& endpoints,
                                          const std::vector<std::uint32_t>& interfaces)
{
    std::vector<LinkCandidate> candidates;
    for (const Endpoint& endpoint : endpoints) {
        const std::size_t percent = endpoint.address.find('%');
        const std::string plain = endpoint.address.substr(0, percent);
        const std::string zone =
            percent == std::string::npos ? "" : endpoint.address.substr(percent + 1);
        if (endpoint.port == 0 || zone.size() > zoneLimit || !isValidIPAddress(plain))
            continue;
        const QHostAddress address(QString::fromStdString(plain));
        const bool needsZone =
            address.protocol() == QAbstractSocket::IPv6Protocol && address.isLinkLocal();
        if (!needsZone)
            add(candidates, {address, endpoint.port});
        else if (!zone.empty())
            add(candidates, inZone(address, zone, endpoint.port));
        else if (endpoint.interfaceIndex != 0)
            add(candidates,
                inZone(address, std::to_string(endpoint.interfaceIndex), endpoint.port));
        else
            for (const std::uint32_t index : interfaces)
                add(candidates, inZone(address, std::to_string(index), endpoint.port));
    }
    return candidates;
}

std::vector<std::uint32_t> usableInterfaces()
{
    std::vector<std::uint32_t> indices;
    for (const QNetworkInterface& interface : QNetworkInterface::allInterfaces()) {
        const auto flags = interface.flags();
        const bool usable = flags.testFlag(QNetworkInterface::IsUp) &&
                            !flags.testFlag(QNetworkInterface::IsLoopBack);
        if (usable && interface.index() > 0)
            indices.push_back(static_cast<std::uint32_t>(interface.index()));
    }
    return indices;
}

} // namespace farview
