#pragma once

#include "Platform/Types/Data.h"
#include "Platform/Types/PropertyList.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace farview
{

/// The text forms of single values in an XML property list. They do not depend on the locale. What
/// cannot be read, or cannot be written, gives nothing.

std::optional<std::int64_t> integerFromText(std::string_view text);

/// Also "nan", "inf" and "infinity" with an optional sign.
std::optional<double> realFromText(std::string_view text);
/// The shortest text that reads back as the same number.
std::string textFromReal(double value);

/// "YYYY-MM-DDThh:mm:ssZ".
std::optional<Date> dateFromText(std::string_view text);
/// Fractions of a second are cut off: the format has no place for them. Nothing for moments outside
/// the years 1 to 9999.
std::optional<std::string> textFromDate(Date date);

/// Base64; white space between its characters is skipped.
std::optional<Data> dataFromBase64(std::string_view text);
std::string base64FromData(const Data& data);

/// Without the XML white space around it.
std::string_view trimmed(std::string_view text);

} // namespace farview
