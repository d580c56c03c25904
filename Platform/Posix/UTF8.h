#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace farview
{

/// One character of a text that may be broken.
struct DecodedCharacter {
    std::optional<char32_t> value; ///< nothing: these bytes are no UTF-8
    std::size_t length = 1;        ///< how many bytes it takes; 1 for a broken byte
};

/// The character at the beginning of `text`, which is not empty. Overlong forms, surrogates and
/// values past U+10FFFF are broken.
DecodedCharacter decodeCharacter(std::string_view text);

void appendUTF8(std::string& text, char32_t character);

bool isValidUTF8(std::string_view text);

/// The text with the replacement character in the place of each broken byte.
std::string validUTF8(std::string text);

} // namespace farview
