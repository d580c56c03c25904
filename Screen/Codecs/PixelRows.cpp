#include "Screen/Codecs/PixelRows.h"

#include <algorithm>

namespace farview
{

std::vector<std::uint32_t> gatheredRows(const FrameView& frame, const PixelRect& part)
{
    std::vector<std::uint32_t> pixels(areaOf(part));
    auto to = pixels.begin();
    for (int y = part.y; y < part.y + part.height; ++y)
        to = std::copy_n(frame.row(y) + part.x, part.width, to);
    return pixels;
}

void scatterRows(const std::vector<std::uint32_t>& pixels, Picture& picture, const PixelRect& part)
{
    auto from = pixels.begin();
    for (int y = part.y; y < part.y + part.height; ++y, from += part.width)
        std::copy_n(from, part.width, picture.row(y) + part.x);
}

} // namespace farview
