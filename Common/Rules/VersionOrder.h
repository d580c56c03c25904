#pragma once

#include <compare>
#include <string_view>

namespace farview
{

/// Whether the text is a version that can be compared: numbers with dots between them ("1.10.2"),
/// 64 bytes at most. Numbers of any size; leading zeros mean nothing.
bool isVersion(std::string_view text);

/// Compares two versions number by number; what one has more counts against zeros, so "1.0" equals
/// "1.0.0". Both must be versions.
std::weak_ordering compareVersions(std::string_view left, std::string_view right);

} // namespace farview
