#include "Platform/Desktop/Screens/X11/WindowPlacing.h"

#include <algorithm>
#include <limits>

namespace farview
{
namespace
{

constexpr std::size_t rectSize = 4;
constexpr std::size_t standSize = 2 * rectSize + 1;
constexpr std::size_t noteSize = 2 + rectSize + 2 * standSize;

enum Flag : std::uint32_t { there = 1, kept = 2, hasHome = 4 };
enum StretchFlag : std::uint32_t { wide = 1, high = 2, full = 4 };

void append(std::vector<std::uint32_t>& numbers, const PixelRect& rect)
{
    for (const int value : {rect.x, rect.y, rect.width, rect.height})
        numbers.push_back(static_cast<std::uint32_t>(value));
}

void append(std::vector<std::uint32_t>& numbers, const WindowStand& stand)
{
    append(numbers, stand.area);
    append(numbers, stand.normal);
    numbers.push_back((stand.stretch.isWide ? wide : 0U) | (stand.stretch.isHigh ? high : 0U) |
                      (stand.stretch.isFull ? full : 0U));
}

PixelRect rectOf(std::span<const std::uint32_t> numbers)
{
    const auto value = [&](std::size_t place) { return static_cast<int>(numbers[place]); };
    return pixelRect(value(0), value(1), value(2), value(3));
}

WindowStand standOf(std::span<const std::uint32_t> numbers)
{
    const auto stretch = numbers[standSize - 1];
    return {rectOf(numbers),
            rectOf(numbers.subspan(rectSize)),
            {(stretch & wide) != 0, (stretch & high) != 0, (stretch & full) != 0}};
}

bool isRect(const PixelRect& rect) { return rect.width > 0 && rect.height > 0; }

bool isStand(const WindowStand& stand)
{
    return isRect(stand.area) && (stand.normal == PixelRect{} || isRect(stand.normal));
}

/// Of numbers that may leave the plane.
PixelRect boundedRect(int x, int y, int width, int height)
{
    using Limits = std::numeric_limits<std::int16_t>;
    const auto bounded = [](int value) {
        return std::clamp<int>(value, Limits::min(), Limits::max());
    };
    return pixelRect(bounded(x), bounded(y), bounded(width), bounded(height));
}

/// Where it would be without being stretched. What is stretched along one axis only says the rest.
PixelRect unstretched(const WindowStand& stand, const PixelRect& now)
{
    const auto& normal = stand.normal == PixelRect{} ? now : stand.normal;
    PixelRect area = stand.area;
    if (stand.stretch.isWide || stand.stretch.isFull) {
        area.x = normal.x;
        area.width = normal.width;
    }
    if (stand.stretch.isHigh || stand.stretch.isFull) {
        area.y = normal.y;
        area.height = normal.height;
    }
    return area;
}

} // namespace

std::vector<std::uint32_t> noteNumbers(const WindowNote& note)
{
    std::vector<std::uint32_t> numbers{note.monitor, (note.isThere ? there : 0U) |
                                                         (note.isKept ? kept : 0U) |
                                                         (note.home ? hasHome : 0U)};
    append(numbers, note.monitorArea);
    append(numbers, note.there);
    append(numbers, note.home.value_or(WindowStand{}));
    return numbers;
}

std::optional<WindowNote> noteOf(std::span<const std::uint32_t> numbers)
{
    if (numbers.size() != noteSize)
        return std::nullopt;
    constexpr std::size_t start = noteSize - 2 * standSize;
    WindowNote note{numbers[0], (numbers[1] & there) != 0, (numbers[1] & kept) != 0,
                    rectOf(numbers.subspan(2)), standOf(numbers.subspan(start))};
    if ((numbers[1] & hasHome) != 0)
        note.home = standOf(numbers.subspan(start + standSize));
    const bool isSound =
        isRect(note.monitorArea) && isStand(note.there) && (!note.home || isStand(*note.home));
    return isSound ? std::optional(note) : std::nullopt;
}

PixelRect framed(const PixelRect& area, const WindowMargins& frame)
{
    return boundedRect(area.x - frame.left, area.y - frame.top,
                       area.width + frame.left + frame.right,
                       area.height + frame.top + frame.bottom);
}

bool isOn(const PixelRect& window, const PixelRect& screen)
{
    const int x = window.x + window.width / 2 - screen.x;
    const int y = window.y + window.height / 2 - screen.y;
    return x >= 0 && x < screen.width && y >= 0 && y < screen.height;
}

bool isWhollyOn(const PixelRect& window, const PixelRect& screen)
{
    return window.x >= screen.x && window.y >= screen.y &&
           window.x + window.width <= screen.x + screen.width &&
           window.y + window.height <= screen.y + screen.height;
}

bool overlap(const PixelRect& left, const PixelRect& right)
{
    return left.x < right.x + right.width && right.x < left.x + left.width &&
           left.y < right.y + right.height && right.y < left.y + left.height;
}

PixelRect broughtIntoSight(const PixelRect& area, const WindowMargins& frame,
                           const PixelRect& screen)
{
    const auto outer = framed(area, frame);
    const int width = std::min<int>(outer.width, screen.width);
    const int height = std::min<int>(outer.height, screen.height);
    const int x = std::clamp<int>(outer.x, screen.x, screen.x + screen.width - width);
    const int y = std::clamp<int>(outer.y, screen.y, screen.y + screen.height - height);
    return boundedRect(x + frame.left, y + frame.top, std::max(1, width - frame.left - frame.right),
                       std::max(1, height - frame.top - frame.bottom));
}

PixelRect placeBack(const PixelRect& now, const WindowMargins& frame,
                    const std::optional<WindowStand>& home, const std::vector<PixelRect>& screens)
{
    const auto wanted = home ? unstretched(*home, now) : now;
    const auto screen = std::find_if(screens.begin(), screens.end(), [&](const auto& each) {
        return home && isOn(home->area, each);
    });
    if (screen == screens.end())
        return broughtIntoSight(wanted, frame, screens.front());
    return isOn(wanted, *screen) ? wanted : broughtIntoSight(wanted, frame, *screen);
}

PixelRect placeOnMonitor(const PixelRect& now, const WindowMargins& frame, const WindowNote& note,
                         const PixelRect& monitor)
{
    const auto before = unstretched(note.there, now);
    const auto wanted =
        boundedRect(before.x - note.monitorArea.x + monitor.x,
                    before.y - note.monitorArea.y + monitor.y, before.width, before.height);
    const bool isSame = note.monitorArea.width == monitor.width &&
                        note.monitorArea.height == monitor.height && isOn(wanted, monitor);
    return isSame ? wanted : broughtIntoSight(wanted, frame, monitor);
}

} // namespace farview
