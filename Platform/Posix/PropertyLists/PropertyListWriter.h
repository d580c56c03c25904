#pragma once

#include "Platform/Types/PropertyList.h"

#include <optional>
#include <string>

namespace farview
{

/// Writes XML property lists, version 1.0, that `PropertyListReader` reads back: keys sorted, one
/// element per line, numbers independent of the locale. Never throws; has no state; any thread.
///
/// A character that XML cannot carry (most control characters, U+FFFE, U+FFFF) and a byte that is
/// no UTF-8 become U+FFFD, the replacement character. Dates lose their fractions of a second.
class PropertyListWriter
{
public:
    struct Result {
        std::optional<std::string> bytes; ///< nothing when the list cannot be written
        std::string reason;               ///< why, in a few words for the log
    };

    /// Refuses what the reader would refuse: lists nested too deeply or too large, dates outside
    /// the years 1 to 9999, and dictionaries in which two keys would become one.
    static Result write(const PropertyList& list);
};

} // namespace farview
