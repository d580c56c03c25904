#include "Common/Rules/ScreenReport.h"

#include <array>
#include <cmath>
#include <limits>
#include <sstream>

namespace farview
{
namespace
{

constexpr std::array words{"none", "coming", "shown", "missing"};
constexpr int lastObstacle = static_cast<int>(ScreenObstacle::failed);
constexpr int lastKeeping = static_cast<int>(WindowKeeping::byFarview);
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

/// Nothing when it is not a report that shows something.
ScreenReport shownReport(std::istream& in)
{
    ScreenReport report{.state = ScreenReport::State::shown};
    int scale = 0;
    int rate = 0;
    int windows = 0;
    in >> report.width >> report.height >> scale >> rate >> windows >> report.isOneFinger >>
        report.isTyping >> report.monitor;
    const bool isSound = isSide(report.width) && isSide(report.height) && scale > 0 && rate >= 0 &&
                         windows >= 0 && windows <= lastKeeping;
    if (!in || !isSound)
        return {};
    report.windows = static_cast<WindowKeeping>(windows);
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
    if (report.state == ScreenReport::State::missing)
        out << ' ' << static_cast<int>(report.obstacle);
    if (report.state != ScreenReport::State::shown)
        return out.str();
    out << ' ' << report.width << ' ' << report.height << ' '
        << std::lround(report.scale * hundredths) << ' ' << std::lround(report.rate * hundredths)
        << ' ' << static_cast<int>(report.windows) << ' ' << report.isOneFinger << ' '
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
    if (word == words[2])
        return shownReport(in);
    int obstacle = 0;
    if (word == words[3] && in >> obstacle && obstacle >= 0 && obstacle <= lastObstacle)
        return {.state = ScreenReport::State::missing,
                .obstacle = static_cast<ScreenObstacle>(obstacle)};
    return {.state = word == words[1] ? ScreenReport::State::coming : ScreenReport::State::none};
}

} // namespace farview
