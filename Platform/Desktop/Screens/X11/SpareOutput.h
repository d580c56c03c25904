#pragma once

#include "Platform/Desktop/Screens/X11/RandrLayout.h"
#include "Platform/Types/PixelRect.h"

#include <optional>
#include <string_view>
#include <vector>

namespace farview
{

/// An output that shows nothing, and a crtc that could feed it and feeds nothing.
struct SpareOutput {
    RandrNumber output = 0;
    RandrNumber crtc = 0;

    bool operator==(const SpareOutput&) const = default;
};

/// Whether the driver made the output up. Only such outputs are ever switched: a plug is the
/// user's, and some drivers fall over when a plug without a screen is switched on.
bool hasNoPlug(std::string_view outputName);

/// The first output without a plug that is off and can be fed; nothing when there is none.
std::optional<SpareOutput> spareOutput(const RandrLayout& layout);

/// Where they end to the right.
int rightEdgeOf(const std::vector<PixelRect>& areas);

/// Whether a monitor may be there: on the plane, and not over what others show.
bool isFree(RandrSize plane, const std::vector<PixelRect>& others, const RandrCrtc& wanted);

/// What the screen must have at least to hold both.
RandrSize united(RandrSize left, RandrSize right);

} // namespace farview
