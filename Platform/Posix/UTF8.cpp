#include "Platform/Posix/UTF8.h"

namespace farview
{
namespace
{

struct Lead {
    std::size_t length;
    char32_t bits;
    char32_t smallest;
};

/// What the first byte of a sequence says; length 0 for a byte that begins none.
Lead leadOf(unsigned char byte)
{
    if (byte < 0x80)
        return {1, byte, 0};
    if (byte >= 0xC2 && byte < 0xE0)
        return {2, byte & 0x1Fu, 0x80};
    if (byte >= 0xE0 && byte < 0xF0)
        return {3, byte & 0x0Fu, 0x800};
    if (byte >= 0xF0 && byte < 0xF5)
        return {4, byte & 0x07u, 0x10000};
    return {0, 0, 0};
}

bool isScalar(char32_t value) { return value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF); }

} // namespace

DecodedCharacter decodeCharacter(std::string_view text)
{
    const auto lead = leadOf(static_cast<unsigned char>(text.front()));
    if (lead.length == 0 || lead.length > text.size())
        return {};
    char32_t value = lead.bits;
    for (std::size_t index = 1; index < lead.length; ++index) {
        const auto byte = static_cast<unsigned char>(text[index]);
        if ((byte & 0xC0u) != 0x80)
            return {};
        value = value << 6 | (byte & 0x3Fu);
    }
    if (value < lead.smallest || !isScalar(value))
        return {};
    return {value, lead.length};
}

void appendUTF8(std::string& text, char32_t character)
{
    const auto put = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    const auto tail = [&](unsigned shift) { put(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | character >> 6);
        tail(0);
    } else if (character < 0x10000) {
        put(0xE0 | character >> 12);
        tail(6);
        tail(0);
    } else {
        put(0xF0 | character >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

bool isValidUTF8(std::string_view text)
{
    while (!text.empty()) {
        const auto character = decodeCharacter(text);
        if (!character.value)
            return false;
        text.remove_prefix(character.length);
    }
    return true;
}

std::string validUTF8(std::string text)
{
    if (isValidUTF8(text))
        return text;
    constexpr char32_t replacement = 0xFFFD;
    std::string valid;
    for (std::string_view rest = text; !rest.empty();) {
        const auto character = decodeCharacter(rest);
        appendUTF8(valid, character.value.value_or(replacement));
        rest.remove_prefix(character.length);
    }
    return valid;
}

} // namespace farview
