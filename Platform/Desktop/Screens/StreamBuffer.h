#pragma once

#include "Platform/CursorSource.h"
#include "Platform/Types/FrameView.h"

#include <cstdint>
#include <optional>

struct spa_buffer;

namespace farview
{

// What lies in a buffer of a PipeWire stream. Whoever filled it is another program: whatever would
// lie outside of it counts as not there.

/// The pixels of a buffer that has all of a frame of that size; their highest byte may be anything.
/// A buffer may bring nothing but the pointer.
std::optional<FrameView> pixelsIn(const spa_buffer& buffer, int width, int height);

/// What a buffer says of the pointer.
struct PointerNews {
    std::optional<PixelPoint> position; ///< nothing: it is elsewhere
    std::optional<CursorImage> image;   ///< nothing: as before
};

/// Nothing when the buffer does not tell.
std::optional<PointerNews> pointerIn(const spa_buffer& buffer);

} // namespace farview
