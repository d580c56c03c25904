#include "Screen/Codecs/ZlibCodec.h"

#include "Link/Wire/ScreenPacket.h"
#include "Screen/Codecs/PixelRows.h"

#include <zlib.h>

namespace farview
{

std::uint8_t ZlibCodec::encoding() const { return QLScreenEncodingLibz; }

Bytes ZlibCodec::encode(const FrameView& frame, const PixelRect& part, int)
{
    const auto pixels = gatheredRows(frame, part);
    const uLong size = pixels.size() * sizeof(std::uint32_t);
    uLong packedSize = compressBound(size);
    Bytes packed(packedSize);
    compress2(packed.data(), &packedSize, reinterpret_cast<const Bytef*>(pixels.data()), size,
              Z_BEST_SPEED);
    packed.resize(packedSize);
    return packed;
}

bool ZlibCodec::decode(ByteView bytes, Picture& picture, const PixelRect& part)
{
    std::vector<std::uint32_t> pixels(areaOf(part));
    const uLong wanted = pixels.size() * sizeof(std::uint32_t);
    uLong size = wanted;
    uLong used = bytes.size();
    const int result =
        uncompress2(reinterpret_cast<Bytef*>(pixels.data()), &size, bytes.data(), &used);
    if (result != Z_OK || size != wanted || used != bytes.size())
        return false;
    scatterRows(pixels, picture, part);
    return true;
}

} // namespace farview
