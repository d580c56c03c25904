#pragma once

#include "Platform/Types/FrameView.h"

namespace farview
{

/// What a part of a screen looks like, and so how it is sent: text and drawings without loss,
/// photographs and films as JPEG.
enum class TileLook { text, photograph };

/// The share of pixels that equal a neighbour, in 1/256: high in text, low in photographs.
int sameness(const FrameView& frame, const PixelRect& part);

TileLook lookOf(const FrameView& frame, const PixelRect& part);

} // namespace farview
