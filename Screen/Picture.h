#pragma once

#include "Platform/Types/FrameView.h"

#include <cstdint>
#include <vector>

namespace farview
{

/// Pixels of its own, black at first. Changing it is for one thread at a time.
class Picture
{
public:
    /// The sides are at least 1 and at most what `PixelRect` can say.
    Picture(int width, int height);

    FrameView view() const { return {mPixels.data(), mWidth, mHeight, mWidth}; }
    int width() const { return mWidth; }
    int height() const { return mHeight; }
    std::uint32_t* row(int y) { return mPixels.data() + static_cast<std::ptrdiff_t>(y) * mWidth; }

    /// Takes a part over from a frame of the same size.
    void take(const FrameView& frame, const PixelRect& part);
    /// Copies what lies at `from` to `to`, both of which it holds; the two may overlap.
    void move(const PixelPoint& from, const PixelRect& to);

private:
    int mWidth;
    int mHeight;
    std::vector<std::uint32_t> mPixels;
};

} // namespace farview
