#include "Platform/Fake/FakeText.h"

#include <locale>

namespace farview
{
namespace
{

const std::ctype<wchar_t>& unicode()
{
    static const std::locale locale("C.UTF-8");
    return std::use_facet<std::ctype<wchar_t>>(locale);
}

/// How many bytes the character takes that begins with `first`; 1 also for bytes that begin none.
std::size_t lengthOf(unsigned char first)
{
    if (first >= 0xf0 && first < 0xf8)
        return 4;
    if (first >= 0xe0)
        return first < 0xf0 ? 3 : 1;
    return first >= 0xc0 ? 2 : 1;
}

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xc0) == 0x80; }

void append(std::string& text, char32_t character)
{
    if (character < 0x80) {
        text += static_cast<char>(character);
        return;
    }
    const unsigned following = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    const unsigned mark = (0xff00U >> (following + 1)) & 0xffU;
    text += static_cast<char>(mark | character >> (6 * following));
    for (unsigned left = following; left > 0; --left)
        text += static_cast<char>(0x80U | ((character >> (6 * (left - 1))) & 0x3fU));
}

/// The character in `bytes`, or 0 when they are not one (or a longer spelling than needed).
char32_t decode(std::string_view bytes)
{
    const auto first = static_cast<unsigned char>(bytes.front());
    if (bytes.size() == 1)
        return first < 0x80 ? first : 0;
    char32_t character = first & (0x7fU >> bytes.size());
    for (const char byte : bytes.substr(1)) {
        if (!isContinuation(byte))
            return 0;
        character = character << 6 | (static_cast<unsigned char>(byte) & 0x3fU);
    }
    std::string spelled;
    append(spelled, character);
    return spelled == bytes ? character : 0;
}

template <typename Map> std::string mapped(std::string_view text, Map map)
{
    std::string result;
    while (!text.empty()) {
        const auto bytes = text.substr(0, lengthOf(static_cast<unsigned char>(text.front())));
        const char32_t character = decode(bytes);
        if (character == 0)
            result += bytes;
        else
            append(result, static_cast<char32_t>(map(static_cast<wchar_t>(character))));
        text.remove_prefix(bytes.size());
    }
    return result;
}

} // namespace

std::string FakeText::lowercase(std::string_view text) const
{
    return mapped(text, [](wchar_t each) { return unicode().tolower(each); });
}

std::string FakeText::uppercase(std::string_view text) const
{
    return mapped(text, [](wchar_t each) { return unicode().toupper(each); });
}

} // namespace farview
