#include "Screen/TileChoice.h"

namespace farview
{
namespace
{

constexpr int leastSamenessOfText = 90;

} // namespace

int sameness(const FrameView& frame, const PixelRect& part)
{
    int same = 0;
    int pixels = 0;
    // Every fourth row tells enough.
    for (int y = part.y + 1; y < part.y + part.height; y += 4) {
        const auto* row = frame.row(y) + part.x;
        const auto* above = frame.row(y - 1) + part.x;
        for (int x = 1; x < part.width; ++x)
            same += static_cast<int>(row[x] == row[x - 1]) | static_cast<int>(row[x] == above[x]);
        pixels += part.width - 1;
    }
    return pixels > 0 ? same * 256 / pixels : 256;
}

TileLook lookOf(const FrameView& frame, const PixelRect& part)
{
    return sameness(frame, part) >= leastSamenessOfText ? TileLook::text : TileLook::photograph;
}

} // namespace farview
