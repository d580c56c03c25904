#pragma once

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>

namespace farview
{

/// A text in the user's language.
using Localize = std::function<std::string(const std::string& text)>;

/// The text, or "(null)" for none.
inline std::string textOrNull(const std::optional<std::string>& text)
{
    return text.value_or("(null)");
}

/// A translated text with `value` in the place of its first "%@".
inline std::string filledText(std::string text, const std::string& value)
{
    const auto place = text.find("%@");
    return place == std::string::npos ? text : text.replace(place, 2, value);
}

/// A translated text with the values, at most nine, in the places that name them: "%1$@" is that of
/// the first. So a translation may have them in another order.
inline std::string filledPlaces(const std::string& text, std::initializer_list<std::string> values)
{
    std::string filled;
    // In one pass: a value that looks like a place is not filled.
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool isPlace =
            text[at] == '%' && at + 3 < text.size() && text.compare(at + 2, 2, "$@") == 0;
        const std::size_t number = isPlace ? text[at + 1] - '1' : values.size();
        if (number < values.size()) {
            filled += values.begin()[number];
            at += 3;
        } else {
            filled += text[at];
        }
    }
    return filled;
}

} // namespace farview
