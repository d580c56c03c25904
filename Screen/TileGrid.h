#pragma once

#include "Platform/Types/PixelRect.h"

#include <vector>

namespace farview
{

/// The squares by which a picture is compared and sent, numbered row by row. Those at the right
/// and lower edges may be smaller.
class TileGrid
{
public:
    static constexpr int side = 64;

    TileGrid(int width, int height);

    int columns() const { return (mWidth + side - 1) / side; }
    int rows() const { return (mHeight + side - 1) / side; }
    int count() const { return columns() * rows(); }
    PixelRect rectOf(int tile) const;
    /// The tiles that a rectangle touches, in ascending order; what lies outside touches none.
    std::vector<int> tilesUnder(const PixelRect& part) const;

private:
    int mWidth;
    int mHeight;
};

} // namespace farview
