#pragma once

#include "Screen/PixelCodec.h"

#include <memory>

namespace farview
{

/// With loss, for photographs and films: a JPEG with the rectangle's width and height, its colours
/// at half the resolution.
class JpegCodec final : public PixelCodec
{
public:
    JpegCodec();
    ~JpegCodec() override;

    std::uint8_t encoding() const override;
    Bytes encode(const FrameView& frame, const PixelRect& part, int quality) override;
    bool decode(ByteView bytes, Picture& picture, const PixelRect& part) override;

private:
    struct Free {
        void operator()(void* handle) const;
    };

    std::unique_ptr<void, Free> mPacker;
    std::unique_ptr<void, Free> mUnpacker;
    Bytes mRoom; ///< for the largest that was packed
};

} // namespace farview
