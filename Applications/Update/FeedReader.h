#pragma once

#include "Common/Rules/UpdateChoice.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace farview
{

/// Reads feeds of updates: RSS 2.0 that says when it was signed and when it expires, and whose
/// items carry a version, an archive and its signature.
///
/// It trusts no feed, signed or not: see `XMLReading`, and the limits. An item without a version
/// that can be compared or without an archive's address is passed over. Never throws; has no state;
/// any thread.
class FeedReader
{
public:
    static constexpr std::size_t largestSize = 1u << 20;
    static constexpr std::size_t largestDepth = 32;
    static constexpr std::size_t mostItems = 200;

    struct Result {
        std::optional<std::vector<UpdateItem>> items; ///< nothing when it was refused
        FeedDates dates;
        std::string reason; ///< why, in a few words for the log
    };

    static Result read(std::string_view bytes);
};

} // namespace farview
