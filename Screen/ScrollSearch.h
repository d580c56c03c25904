#pragma once

#include "Platform/Types/FrameView.h"

#include <optional>

namespace farview
{

/// A block of the picture that moved straight up or down.
struct Scroll {
    PixelPoint from;
    PixelRect to;

    bool operator==(const Scroll&) const = default;
};

/// The largest block within `area` that moved from one frame to the next; nothing where none is
/// worth a copy. Both frames have the same size and hold the area.
std::optional<Scroll> findScroll(const FrameView& before, const FrameView& after,
                                 const PixelRect& area);

} // namespace farview
