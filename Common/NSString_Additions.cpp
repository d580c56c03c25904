#include "Common/NSString_Additions.h"

#include "Platform/Platform.h"
#include "Platform/SearchPaths.h"
#include "Platform/Text.h"

#include <array>
#include <cstddef>
#include <cstring>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace
{

constexpr std::array<const char*, 3> stateNames = {"None", "NotConnected", "Connected"};

bool parsesAs(int family, const std::string& text)
{
    in6_addr scratch{};
    return inet_pton(family, text.c_str(), &scratch) == 1;
}

/// The address field of a record, as text. Only as many bytes are read as the family's field has.
std::string numericAddress(const sockaddr* address)
{
    const auto* bytes = reinterpret_cast<const char*>(address);
    std::array<char, INET6_ADDRSTRLEN> text{};
    in6_addr field{};
    if (address->sa_family == AF_INET6)
        std::memcpy(&field, bytes + offsetof(sockaddr_in6, sin6_addr), sizeof(in6_addr));
    else if (address->sa_family == AF_INET)
        std::memcpy(&field, bytes + offsetof(sockaddr_in, sin_addr), sizeof(in_addr));
    else
        return {};
    inet_ntop(address->sa_family, &field, text.data(), text.size());
    return text.data();
}

} // namespace

bool isValidIPAddress(const std::string& text)
{
    // The parser stops at a NUL; what follows one would go unchecked.
    if (text.empty() || text.find('\0') != std::string::npos)
        return false;
    return parsesAs(AF_INET6, text) || parsesAs(AF_INET, text);
}

std::optional<std::string> stringIPAddresWithSockAddr(const sockaddr* address)
{
    if (!address)
        return std::nullopt;
    return numericAddress(address);
}

bool hasPrefixCaseless(std::string_view text, std::string_view prefix)
{
    const auto& cases = *farview::Platform::current().text;
    return cases.lowercase(text).starts_with(cases.lowercase(prefix));
}

std::string applicationSupportPath()
{
    const auto folders = farview::Platform::current().searchPaths->directories(
        farview::SearchPathDirectory::applicationSupport, farview::userDomain);
    return folders.empty() ? std::string{} : folders.front();
}

std::optional<std::string> connectionStateString(int state)
{
    if (state < FVExConnectStateNone || state > FVExConnectStateConnected)
        return std::nullopt;
    return stateNames[static_cast<std::size_t>(state)];
}

FVExConnectState FVExConnectStateFromString(const std::optional<std::string>& text)
{
    for (const auto state : {FVExConnectStateNotConnected, FVExConnectStateConnected}) {
        if (text == stateNames[state])
            return state;
    }
    return FVExConnectStateNone;
}
