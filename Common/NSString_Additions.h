#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Common/FVEConstants.h"

struct sockaddr;

/// Whether the text is one complete numeric IPv4 or IPv6 address and nothing else: no host name, no
/// port, no blanks, no zone, no prefix length. Decided by the system's own numeric parser.
bool isValidIPAddress(const std::string& text);

/// The numeric address of a socket address record: "" for a family other than IPv4 and IPv6,
/// nothing for a null pointer. The port is not part of it.
std::optional<std::string> stringIPAddresWithSockAddr(const sockaddr* address);

/// Whether `text` begins with `prefix`, upper and lower case being the same. An empty prefix always
/// fits.
bool hasPrefixCaseless(std::string_view text, std::string_view prefix);

/// The user's folder for what applications store. Not created.
std::string applicationSupportPath();

/// "None", "NotConnected", "Connected"; nothing for any other number.
std::optional<std::string> connectionStateString(int state);

/// The reverse; exact, and "None" for whatever else the text says, or for none.
FVExConnectState FVExConnectStateFromString(const std::optional<std::string>& text);
