#pragma once

#include "Screen/PixelCodec.h"

namespace farview
{

/// Without loss, for devices that know nothing better: the rectangle's pixels, row by row, as zlib
/// packs them.
class ZlibCodec final : public PixelCodec
{
public:
    std::uint8_t encoding() const override;
    Bytes encode(const FrameView& frame, const PixelRect& part, int quality) override;
    bool decode(ByteView bytes, Picture& picture, const PixelRect& part) override;
};

} // namespace farview
