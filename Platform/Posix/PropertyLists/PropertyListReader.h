#pragma once

#include "Platform/Types/PropertyList.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace farview
{

/// Reads XML property lists, version 1.0, that anyone may have written.
///
/// Strict: UTF-8 only, no declarations inside the document type, no unknown element or attribute,
/// no key twice in one dictionary, integers of 64 bits with a sign. Bounded: see the limits. Each
/// value keeps its type. Never throws; has no state; any thread.
class PropertyListReader
{
public:
    static constexpr std::size_t largestSize = 8u << 20;
    /// A lone value is 1 deep, each array or dictionary around it adds 1.
    static constexpr std::size_t largestDepth = 128;

    struct Result {
        std::optional<PropertyList> list; ///< nothing when it was refused
        std::string reason;               ///< why, in a few words for the log
    };

    static Result read(std::string_view bytes);
};

} // namespace farview
