#include "Platform/Posix/PropertyLists/PropertyListScalars.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace farview
{
namespace
{

constexpr std::string_view whiteSpace = " \t\r\n";
constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

template <typename Number> std::optional<Number> numberFrom(std::string_view text)
{
    text = trimmed(text);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    Number number{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc{} || result.ptr != text.data() + text.size())
        return std::nullopt;
    return number;
}

/// The decimal number that fills text[start, start + length), or -1.
int digits(std::string_view text, std::size_t start, std::size_t length)
{
    int number = 0;
    for (const char each : text.substr(start, length)) {
        if (each < '0' || each > '9')
            return -1;
        number = number * 10 + (each - '0');
    }
    return number;
}

bool hasDatePunctuation(std::string_view text)
{
    constexpr std::string_view pattern = "0000-00-00T00:00:00Z";
    if (text.size() != pattern.size())
        return false;
    for (std::size_t index = 0; index < pattern.size(); ++index) {
        if (pattern[index] != '0' && pattern[index] != text[index])
            return false;
    }
    return true;
}

/// The bytes of `count` base64 characters whose bits are in `bits`.
void appendBytes(Data& data, std::uint32_t bits, std::size_t count)
{
    for (std::size_t byte = 0; byte + 1 < count; ++byte)
        data.bytes.push_back(static_cast<std::uint8_t>(bits >> (16 - 8 * byte)));
}

} // namespace

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

std::optional<std::int64_t> integerFromText(std::string_view text)
{
    return numberFrom<std::int64_t>(text);
}

std::optional<double> realFromText(std::string_view text) { return numberFrom<double>(text); }

std::string textFromReal(double value)
{
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value > 0 ? "+infinity" : "-infinity";
    std::array<char, 64> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return {buffer.data(), result.ptr};
}

std::optional<Date> dateFromText(std::string_view text)
{
    using namespace std::chrono;
    text = trimmed(text);
    if (!hasDatePunctuation(text))
        return std::nullopt;
    const int hour = digits(text, 11, 2);
    const int minute = digits(text, 14, 2);
    const int second = digits(text, 17, 2);
    const int year = digits(text, 0, 4);
    const int month = digits(text, 5, 2);
    const int day = digits(text, 8, 2);
    if (std::min({year, month, day, hour, minute, second}) < 0)
        return std::nullopt;
    const year_month_day calendarDay{std::chrono::year(year),
                                     std::chrono::month(static_cast<unsigned>(month)),
                                     std::chrono::day(static_cast<unsigned>(day))};
    if (!calendarDay.ok() || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    const auto moment = sys_days(calendarDay) + hours(hour) + minutes(minute) + seconds(second);
    return Date{static_cast<double>(moment.time_since_epoch().count())};
}

std::optional<std::string> textFromDate(Date date)
{
    using namespace std::chrono;
    constexpr double firstSecond = -62135596800.0; // the year 1
    constexpr double endSecond = 253402300800.0;   // the year 10000
    // Written so that "not a number" fails it too.
    if (!(date.secondsSince1970 >= firstSecond && date.secondsSince1970 < endSecond))
        return std::nullopt;
    const sys_seconds moment{seconds(static_cast<std::int64_t>(std::floor(date.secondsSince1970)))};
    const auto midnight = floor<days>(moment);
    const year_month_day day{midnight};
    const hh_mm_ss time{moment - midnight};
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ",
                  static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                  static_cast<unsigned>(day.day()), static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return text.data();
}

std::optional<Data> dataFromBase64(std::string_view text)
{
    Data data;
    std::uint32_t bits = 0;
    std::size_t count = 0;
    std::size_t padding = 0;
    for (const char each : text) {
        if (whiteSpace.find(each) != std::string_view::npos)
            continue;
        const auto value = alphabet.find(each);
        const bool isPadding = each == '=' && count >= 2;
        if (isPadding ? count + ++padding > 4 : value == std::string_view::npos || padding > 0)
            return std::nullopt;
        if (isPadding)
            continue;
        bits |= static_cast<std::uint32_t>(value) << (18 - 6 * count);
        if (++count == 4) {
            appendBytes(data, bits, count);
            bits = 0;
            count = 0;
        }
    }
    if (count != 0 && count + padding != 4)
        return std::nullopt;
    appendBytes(data, bits, count);
    return data;
}

std::string base64FromData(const Data& data)
{
    std::string text;
    text.reserve((data.size() + 2) / 3 * 4);
    for (std::size_t start = 0; start < data.size(); start += 3) {
        const auto left = std::min<std::size_t>(3, data.size() - start);
        std::uint32_t bits = 0;
        for (std::size_t index = 0; index < left; ++index)
            bits |= static_cast<std::uint32_t>(data.bytes[start + index]) << (16 - 8 * index);
        for (std::size_t index = 0; index < 4; ++index)
            text += index <= left ? alphabet[bits >> (18 - 6 * index) & 63] : '=';
    }
    return text;
}

} // namespace farview
