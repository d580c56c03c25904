#include "Screen/Picture.h"

#include <algorithm>

namespace farview
{

Picture::Picture(int width, int height)
    : mWidth(width), mHeight(height),
      mPixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
{
}

void Picture::take(const FrameView& frame, const PixelRect& part)
{
    for (int y = part.y; y < part.y + part.height; ++y)
        std::copy_n(frame.row(y) + part.x, part.width, row(y) + part.x);
}

void Picture::move(const PixelPoint& from, const PixelRect& to)
{
    // Downwards from the last row, so that no row is read after it was written.
    const bool isDownwards = from.y < to.y;
    for (int i = 0; i < to.height; ++i) {
        const int y = isDownwards ? to.height - 1 - i : i;
        std::memmove(row(to.y + y) + to.x, row(from.y + y) + from.x,
                     static_cast<std::size_t>(to.width) * sizeof(std::uint32_t));
    }
}

} // namespace farview
