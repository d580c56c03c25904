#pragma once

#include <cstdint>

namespace farview
{

/// A place on a screen, in pixels from its upper left corner.
struct PixelPoint {
    std::int16_t x = 0;
    std::int16_t y = 0;

    bool operator==(const PixelPoint&) const = default;
};

/// A part of a screen, in pixels. One that comes from another program may lie anywhere and have
/// negative sides.
struct PixelRect {
    std::int16_t x = 0;
    std::int16_t y = 0;
    std::int16_t width = 0;
    std::int16_t height = 0;

    bool operator==(const PixelRect&) const = default;
};

/// Of numbers that are known to fit.
constexpr PixelPoint pixelPoint(int x, int y)
{
    return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y)};
}
constexpr PixelRect pixelRect(int x, int y, int width, int height)
{
    return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
            static_cast<std::int16_t>(width), static_cast<std::int16_t>(height)};
}

} // namespace farview
