#include "Screen/TileGrid.h"

#include <algorithm>

namespace farview
{

TileGrid::TileGrid(int width, int height) : mWidth(width), mHeight(height) {}

PixelRect TileGrid::rectOf(int tile) const
{
    const int x = tile % columns() * side;
    const int y = tile / columns() * side;
    return pixelRect(x, y, std::min(side, mWidth - x), std::min(side, mHeight - y));
}

std::vector<int> TileGrid::tilesUnder(const PixelRect& part) const
{
    const int left = std::max<int>(part.x, 0);
    const int top = std::max<int>(part.y, 0);
    const int right = std::min(part.x + part.width, mWidth);
    const int bottom = std::min(part.y + part.height, mHeight);
    std::vector<int> tiles;
    if (left >= right || top >= bottom)
        return tiles;
    for (int row = top / side; row * side < bottom; ++row) {
        for (int column = left / side; column * side < right; ++column)
            tiles.push_back(row * columns() + column);
    }
    return tiles;
}

} // namespace farview
