#include "Common/Rules/ScreenReport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <sstream>

namespace farview
{
namespace
{

constexpr std::array words{"none", "coming", "shown", "missing", "possible", "impossible"};
constexpr double hundredths = 100;
constexpr std::size_t longestText = 1024;

std::ostream& operator<<(std::ostream& out, const PixelRect& rect)
{
    return out << ' ' << rect.x << ' ' << rect.y << ' ' << rect.width << ' ' << rect.height;
}

bool isSide(int number) { return number > 0 && number <= std::numeric_limits<std::int16_t>::max(); }

std::istream& operator>>(std::istream& in, PixelRect& rect)
{
    in >> rect.x >> rect.y >> rect.width >> rect.height;
    if (in && !(isSide(rect.width) && isSide(rect.height)))
        in.setstate(std::ios::failbit);
    return in;
}

/// Of an enumeration that ends with `last`.
template <typename Enumeration>
std::optional<Enumeration> numberIn(std::istream& in, Enumeration last)
{
    int number = 0;
    const bool isOne = in >> number && number >= 0 && number <= static_cast<int>(last);
    return isOne ? std::optional(static_cast<Enumeration>(number)) : std::nullopt;
}

/// Nothing when it is not a report that shows something.
ScreenReport shownReport(std::istream& in)
{
    ScreenReport report{.state = ScreenReport::State::shown};
    int scale = 0;
    int rate = 0;
    in >> report.width >> report.height >> scale >> rate;
    const auto windows = numberIn(in, WindowKeeping::byFarview);
    const auto fingers = numberIn(in, ScreenReport::Fingers::oneWithoutARight);
    in >> report.isTyping >> report.monitor;
    const bool isSound = isSide(report.width) && isSide(report.height) && scale > 0 && rate >= 0;
    if (!in || !isSound || !windows || !fingers)
        return {};
    report.windows = *windows;
    report.fingers = *fingers;
    report.scale = scale / hundredths;
    report.rate = rate / hundredths;
    PixelRect screen;
    while (report.screens.size() < ScreenReport::mostScreens && in >> screen)
        report.screens.push_back(screen);
    return report;
}

} // namespace

std::string textOfScreenReport(const ScreenReport& report)
{
    std::ostringstream out;
    out << words.at(static_cast<std::size_t>(report.state));
    if (report.isObstructed())
        out << ' ' << static_cast<int>(report.obstacle);
    if (report.state == ScreenReport::State::possible)
        out << ' ' << static_cast<int>(report.way);
    if (report.state != ScreenReport::State::shown)
        return out.str();
    out << ' ' << report.width << ' ' << report.height << ' '
        << std::lround(report.scale * hundredths) << ' ' << std::lround(report.rate * hundredths)
        << ' ' << static_cast<int>(report.windows) << ' ' << static_cast<int>(report.fingers) << ' '
        << report.isTyping << report.monitor;
    for (std::size_t i = 0; i < report.screens.size() && i < ScreenReport::mostScreens; ++i)
        out << report.screens[i];
    return out.str();
}

ScreenReport screenReport(const std::string* text)
{
    if (!text || text->size() > longestText)
        return {};
    std::istringstream in(*text);
    in.imbue(std::locale::classic());
    std::string word;
    in >> word;
    const auto place = std::find(words.begin(), words.end(), word) - words.begin();
    const auto state = static_cast<ScreenReport::State>(place);
    switch (state) {
    case ScreenReport::State::coming:
        return {.state = state};
    case ScreenReport::State::shown:
        return shownReport(in);
    case ScreenReport::State::missing:
    case ScreenReport::State::impossible:
        if (const auto obstacle = numberIn(in, ScreenObstacle::failed))
            return {.state = state, .obstacle = *obstacle};
        break;
    case ScreenReport::State::possible:
        if (const auto way = numberIn(in, ScreenWay::existingScreen))
            return {.state = state, .way = *way};
        break;
    case ScreenReport::State::none:
        break;
    }
    return {};
}

} // namespace farview
