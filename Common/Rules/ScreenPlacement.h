#pragma once

#include "Platform/Types/PixelRect.h"

#include <span>

namespace farview
{

/// On which side of the main display the device's monitor stands.
enum class ScreenSide { right, left, above, below };

/// Where a monitor of that size goes, in the desktop's own units: beside the first of the user's
/// screens, which is the main one, and past those that are in the way. `screens` is not empty.
PixelPoint cornerBeside(ScreenSide side, int width, int height, std::span<const PixelRect> screens);

/// The side on which it stands, wherever it was put.
ScreenSide sideOf(const PixelRect& monitor, const PixelRect& mainScreen);

} // namespace farview
