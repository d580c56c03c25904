#pragma once

#include "Link/Wire/LinkFrame.h"
#include "Screen/PixelCodec.h"

#include <optional>

namespace farview
{

/// The pointer's image, which the device draws itself. Its pixels carry their opacity in the
/// highest byte and are multiplied by it.
struct Cursor {
    static constexpr int largestSide = 256;

    PixelPoint hotspot; ///< the pixel that points
    Picture image;
};

/// The packets of the pointer. `zlib` packs the image.
LinkScreenRectangle cursorPlacePacket(const PixelPoint& place);
LinkScreenRectangle cursorPacket(const Cursor& cursor, PixelCodec& zlib);
LinkScreenRectangle noCursorPacket();

/// What a packet with a cursor brings.
struct ReceivedCursor {
    std::optional<Cursor> cursor; ///< nothing: none is to be drawn
};
/// Nothing when the packet breaks a rule.
std::optional<ReceivedCursor> readCursorPacket(const LinkScreenRectangle& packet, PixelCodec& zlib);

} // namespace farview
