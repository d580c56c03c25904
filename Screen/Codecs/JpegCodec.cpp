#include "Screen/Codecs/JpegCodec.h"

#include "Link/Wire/ScreenPacket.h"

#include <turbojpeg.h>

namespace farview
{
namespace
{

constexpr int bytesPerPixel = 4;
constexpr int colours = TJSAMP_420;

} // namespace

void JpegCodec::Free::operator()(void* handle) const { tjDestroy(handle); }

JpegCodec::JpegCodec() : mPacker(tjInitCompress()), mUnpacker(tjInitDecompress()) {}

JpegCodec::~JpegCodec() = default;

std::uint8_t JpegCodec::encoding() const { return QLScreenEncodingJPG; }

Bytes JpegCodec::encode(const FrameView& frame, const PixelRect& part, int quality)
{
    Bytes packed(tjBufSize(part.width, part.height, colours));
    unsigned char* to = packed.data();
    unsigned long size = packed.size();
    const auto* from = reinterpret_cast<const unsigned char*>(frame.row(part.y) + part.x);
    if (tjCompress2(mPacker.get(), from, part.width, frame.stride * bytesPerPixel, part.height,
                    TJPF_BGRX, &to, &size, colours, quality, TJFLAG_FASTDCT | TJFLAG_NOREALLOC))
        size = 0;
    packed.resize(size);
    return packed;
}

bool JpegCodec::decode(ByteView bytes, Picture& picture, const PixelRect& part)
{
    int width = 0;
    int height = 0;
    int sampling = 0;
    int space = 0;
    if (tjDecompressHeader3(mUnpacker.get(), bytes.data(), bytes.size(), &width, &height, &sampling,
                            &space) != 0 ||
        width != part.width || height != part.height)
        return false;
    auto* to = reinterpret_cast<unsigned char*>(picture.row(part.y) + part.x);
    return tjDecompress2(mUnpacker.get(), bytes.data(), bytes.size(), to, width,
                         picture.width() * bytesPerPixel, height, TJPF_BGRX,
                         TJFLAG_FASTDCT | TJFLAG_FASTUPSAMPLE | TJFLAG_STOPONWARNING) == 0;
}

} // namespace farview
