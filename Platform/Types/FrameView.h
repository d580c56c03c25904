#pragma once

#include "Platform/Types/PixelRect.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace farview
{

/// Pixels of a screen that somebody else owns. Each has 32 bits: blue in the lowest byte, then
/// green, red, and a byte that is 0.
struct FrameView {
    const std::uint32_t* pixels = nullptr;
    int width = 0;
    int height = 0;
    int stride = 0; ///< from one row to the next, in pixels

    const std::uint32_t* row(int y) const
    {
        return pixels + static_cast<std::ptrdiff_t>(y) * stride;
    }
    /// Whether the rectangle has pixels, all of them in this frame.
    bool holds(const PixelRect& part) const
    {
        return part.x >= 0 && part.y >= 0 && part.width > 0 && part.height > 0 &&
               part.x + part.width <= width && part.y + part.height <= height;
    }
};

/// Whether a stretch of a row is the same in two frames that hold it.
inline bool isSameRow(const FrameView& left, const FrameView& right, int x, int y, int width)
{
    return std::memcmp(left.row(y) + x, right.row(y) + x,
                       static_cast<std::size_t>(width) * sizeof(std::uint32_t)) == 0;
}

/// Whether two frames that hold the rectangle show the same there.
inline bool isSame(const FrameView& left, const FrameView& right, const PixelRect& part)
{
    for (int y = part.y; y < part.y + part.height; ++y) {
        if (!isSameRow(left, right, part.x, y, part.width))
            return false;
    }
    return true;
}

} // namespace farview
