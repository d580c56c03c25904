#pragma once

#include "Link/Wire/ByteReader.h"
#include "Screen/Picture.h"

#include <cstdint>

namespace farview
{

/// JPEG's best and least quality here.
inline constexpr int kBestPictureQuality = 85;
inline constexpr int kLeastPictureQuality = 25;

/// One way to turn the pixels of a rectangle into bytes and back. Each thread has codecs of its
/// own.
class PixelCodec
{
public:
    virtual ~PixelCodec() = default;

    /// The number that says in a packet that its data is of this kind.
    virtual std::uint8_t encoding() const = 0;
    /// `frame` holds `part`. `quality` is from 1 to 100; a codec without loss ignores it.
    virtual Bytes encode(const FrameView& frame, const PixelRect& part, int quality) = 0;
    /// Puts foreign bytes into a part that the picture holds, and changes nothing else. False when
    /// they do not stand for just its pixels; the part may have changed then. Takes memory for no
    /// more than these pixels, whatever the bytes announce.
    virtual bool decode(ByteView bytes, Picture& picture, const PixelRect& part) = 0;
};

} // namespace farview
