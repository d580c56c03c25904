#pragma once

#include "Platform/Desktop/Discovery/DiscoverySource.h"

#include <string>

namespace farview
{

/// The text with every byte that is not UTF-8 replaced by U+FFFD.
std::string replacingInvalidUTF8(const std::string& bytes);

/// Host names and domains have one spelling in this system.
std::string withoutTrailingDot(std::string name);

/// "name.type.domain" with everything escaped that needs it; empty when the name cannot be one.
std::string fullServiceName(const ServiceName& service);

} // namespace farview
