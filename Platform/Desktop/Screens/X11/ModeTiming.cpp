#include "Platform/Desktop/Screens/X11/ModeTiming.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace farview
{

xcb_randr_mode_info_t modeTiming(RandrSize size, std::size_t nameLength)
{
    constexpr double leastBlanking = 460; // microseconds
    const double line = (1e6 / framesPerSecond - leastBlanking) / size.height;
    const int blankLines = std::max(static_cast<int>(leastBlanking / line) + 1, 3 + 8 + 6);
    xcb_randr_mode_info_t mode{};
    const auto set = [](std::uint16_t& field, int value) {
        field = static_cast<std::uint16_t>(value);
    };
    set(mode.width, size.width);
    set(mode.hsync_start, size.width + 48);
    set(mode.hsync_end, size.width + 80);
    set(mode.htotal, size.width + 160);
    set(mode.height, size.height);
    set(mode.vsync_start, size.height + 3);
    set(mode.vsync_end, size.height + 3 + 8);
    set(mode.vtotal, size.height + blankLines);
    constexpr double fastest = std::numeric_limits<std::uint32_t>::max();
    mode.dot_clock =
        static_cast<std::uint32_t>(std::min(fastest, framesPerSecond * mode.htotal * mode.vtotal));
    mode.mode_flags = XCB_RANDR_MODE_FLAG_HSYNC_POSITIVE | XCB_RANDR_MODE_FLAG_VSYNC_NEGATIVE;
    set(mode.name_len, static_cast<int>(nameLength));
    return mode;
}

} // namespace farview
