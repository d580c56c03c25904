#pragma once

#include <optional>
#include <string>

namespace farview
{

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

} // namespace farview
