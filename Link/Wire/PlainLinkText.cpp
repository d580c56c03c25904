#include "Link/Wire/LinkCodec.h"

namespace farview
{

namespace
{

/// How many bytes the character at the beginning takes; 0 when it is no well-formed UTF-8.
std::size_t characterSize(std::string_view text)
{
    const auto byte = [&](std::size_t index) { return static_cast<std::uint8_t>(text[index]); };
    const std::uint8_t lead = byte(0);
    if (lead < 0x80)
        return 1;
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < size)
        return 0;
    for (std::size_t index = 1; index < size; ++index) {
        if ((byte(index) & 0xC0) != 0x80)
            return 0;
    }
    // The second byte rules out overlong forms, surrogates and what lies beyond the last character.
    const std::uint8_t second = byte(1);
    const bool bad = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                     (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return bad ? 0 : size;
}

bool isControl(std::string_view character)
{
    const auto lead = static_cast<std::uint8_t>(character[0]);
    if (character.size() == 1)
        return lead < 0x20 || lead == 0x7F;
    const auto second = static_cast<std::uint8_t>(character[1]);
    return lead == 0xC2 && second < 0xA0;
}

} // namespace

std::string plainLinkText(std::string_view text, std::size_t limit)
{
    std::string result;
    while (!text.empty()) {
        const std::size_t size = characterSize(text);
        std::string_view character = size == 0 ? "?" : text.substr(0, size);
        if (size != 0 && isControl(character))
            character = " ";
        if (result.size() + character.size() > limit)
            break;
        result += character;
        text.remove_prefix(size == 0 ? 1 : size);
    }
    return result;
}

} // namespace farview
