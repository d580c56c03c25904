#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace farview
{

/// The texts of a ".strings" catalogue: UTF-8, pairs `"key" = "text";`, comments `/* */` and `//`.
///
/// In texts, `\"`, `\\`, `\n`, `\r`, `\t` and `\uXXXX` stand for the character they name. Anything
/// else refuses the whole catalogue, as does a key that comes twice or a file of more than 1 MB.
struct StringsFile {
    static constexpr std::size_t largestSize = 1u << 20;

    std::optional<std::map<std::string, std::string>> texts; ///< nothing when it was refused
    std::string reason;                                      ///< why, with the line's number

    static StringsFile parse(std::string_view bytes);
};

} // namespace farview
