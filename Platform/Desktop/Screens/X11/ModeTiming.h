#pragma once

#include "Platform/Desktop/Screens/X11/RandrLayout.h"

#include <xcb/randr.h>

#include <cstddef>

namespace farview
{

/// How often a monitor of ours is drawn.
constexpr double framesPerSecond = 60;

/// A mode of that size: reduced blanking as CVT 1.2 describes it. Drivers of outputs without a plug
/// take any timing, but programs show the rate that follows from it.
xcb_randr_mode_info_t modeTiming(RandrSize size, std::size_t nameLength);

} // namespace farview
