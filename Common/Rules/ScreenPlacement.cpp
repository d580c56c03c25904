#include "Common/Rules/ScreenPlacement.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace farview
{
namespace
{

bool overlap(const PixelRect& left, const PixelRect& right)
{
    return left.x < right.x + right.width && right.x < left.x + left.width &&
           left.y < right.y + right.height && right.y < left.y + left.height;
}

/// Puts the monitor against that side of a screen, and leaves its other coordinate.
void putAgainst(ScreenSide side, const PixelRect& screen, PixelRect& monitor)
{
    switch (side) {
    case ScreenSide::right:
        monitor.x = pixelPoint(screen.x + screen.width, 0).x;
        break;
    case ScreenSide::left:
        monitor.x = pixelPoint(screen.x - monitor.width, 0).x;
        break;
    case ScreenSide::above:
        monitor.y = pixelPoint(0, screen.y - monitor.height).y;
        break;
    case ScreenSide::below:
        monitor.y = pixelPoint(0, screen.y + screen.height).y;
        break;
    }
}

} // namespace

PixelPoint cornerBeside(ScreenSide side, int width, int height, std::span<const PixelRect> screens)
{
    PixelRect monitor = pixelRect(screens.front().x, screens.front().y, width, height);
    auto inTheWay = screens.begin();
    // Each round leaves one screen behind for good.
    for (std::size_t round = 0; round <= screens.size() && inTheWay != screens.end(); ++round) {
        putAgainst(side, *inTheWay, monitor);
        inTheWay = std::find_if(screens.begin(), screens.end(),
                                [&](const PixelRect& screen) { return overlap(screen, monitor); });
    }
    return {monitor.x, monitor.y};
}

ScreenSide sideOf(const PixelRect& monitor, const PixelRect& mainScreen)
{
    // Between the centres, in proportion to the screens.
    const std::int64_t across = 2 * (monitor.x - mainScreen.x) + monitor.width - mainScreen.width;
    const std::int64_t down = 2 * (monitor.y - mainScreen.y) + monitor.height - mainScreen.height;
    if (std::abs(across) * (monitor.height + mainScreen.height) >=
        std::abs(down) * (monitor.width + mainScreen.width))
        return across >= 0 ? ScreenSide::right : ScreenSide::left;
    return down >= 0 ? ScreenSide::below : ScreenSide::above;
}

} // namespace farview
