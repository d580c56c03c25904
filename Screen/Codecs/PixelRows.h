#pragma once

#include "Screen/Picture.h"

#include <cstdint>
#include <vector>

namespace farview
{

/// The pixels of a rectangle without gaps.
std::vector<std::uint32_t> gatheredRows(const FrameView& frame, const PixelRect& part);
/// The reverse. `pixels` are as many as the part has.
void scatterRows(const std::vector<std::uint32_t>& pixels, Picture& picture, const PixelRect& part);

inline std::size_t areaOf(const PixelRect& part)
{
    return static_cast<std::size_t>(part.width) * static_cast<std::size_t>(part.height);
}

} // namespace farview
