#include "Screen/Codecs/ZstdCodec.h"

#include "Link/Wire/ScreenPacket.h"
#include "Screen/Codecs/PixelRows.h"

#include <zstd.h>

namespace farview
{
namespace
{

constexpr int fastest = 1;

} // namespace

void ZstdCodec::Free::operator()(ZSTD_CCtx_s* context) const { ZSTD_freeCCtx(context); }

void ZstdCodec::Free::operator()(ZSTD_DCtx_s* context) const { ZSTD_freeDCtx(context); }

ZstdCodec::ZstdCodec() : mPacker(ZSTD_createCCtx()), mUnpacker(ZSTD_createDCtx()) {}

ZstdCodec::~ZstdCodec() = default;

std::uint8_t ZstdCodec::encoding() const { return kScreenEncodingZstd; }

Bytes ZstdCodec::encode(const FrameView& frame, const PixelRect& part, int)
{
    const auto pixels = gatheredRows(frame, part);
    const std::size_t size = pixels.size() * sizeof(std::uint32_t);
    Bytes packed(ZSTD_compressBound(size));
    packed.resize(ZSTD_compressCCtx(mPacker.get(), packed.data(), packed.size(), pixels.data(),
                                    size, fastest));
    return packed;
}

bool ZstdCodec::decode(ByteView bytes, Picture& picture, const PixelRect& part)
{
    std::vector<std::uint32_t> pixels(areaOf(part));
    const std::size_t size = pixels.size() * sizeof(std::uint32_t);
    const std::size_t unpacked =
        ZSTD_decompressDCtx(mUnpacker.get(), pixels.data(), size, bytes.data(), bytes.size());
    if (unpacked != size) // an error is a number that no picture has
        return false;
    scatterRows(pixels, picture, part);
    return true;
}

} // namespace farview
