#include "Screen/Codecs/JpegCodec.h"

#include "Link/Wire/ScreenPacket.h"

#include <turbojpeg.h>

#include <algorithm>

namespace farview
{
namespace
{

constexpr int bytesPerPixel = 4;
constexpr int colours = TJSAMP_420;

/// What may stand before the frame's own header: tables, what programs note, comments.
bool isBeforeFrame(std::uint8_t kind)
{
    return kind == 0xc4 || kind == 0xdb || kind == 0xdd || kind == 0xfe || (kind & 0xf0) == 0xe0;
}

/// Whether the picture is told once, from top to bottom, as the header of its frame says. Others
/// are refined in many passes, and a few bytes of those are the work of minutes.
bool isToldOnce(ByteView jpeg)
{
    constexpr std::uint8_t baseline = 0xc0;
    constexpr std::uint8_t extended = 0xc1;
    std::size_t at = 2;
    while (at + 4 <= jpeg.size() && jpeg[at] == 0xff && isBeforeFrame(jpeg[at + 1]))
        at += 2 + std::size_t{jpeg[at + 2]} * 256 + jpeg[at + 3];
    return at + 4 <= jpeg.size() && jpeg[at] == 0xff &&
           (jpeg[at + 1] == baseline || jpeg[at + 1] == extended);
}

} // namespace

void JpegCodec::Free::operator()(void* handle) const { tjDestroy(handle); }

JpegCodec::JpegCodec() : mPacker(tjInitCompress()), mUnpacker(tjInitDecompress()) {}

JpegCodec::~JpegCodec() = default;

std::uint8_t JpegCodec::encoding() const { return QLScreenEncodingJPG; }

Bytes JpegCodec::encode(const FrameView& frame, const PixelRect& part, int quality)
{
    mRoom.resize(std::max(mRoom.size(), tjBufSize(part.width, part.height, colours)));
    unsigned char* to = mRoom.data();
    unsigned long size = mRoom.size();
    const auto* from = reinterpret_cast<const unsigned char*>(frame.row(part.y) + part.x);
    if (tjCompress2(mPacker.get(), from, part.width, frame.stride * bytesPerPixel, part.height,
                    TJPF_BGRX, &to, &size, colours, quality, TJFLAG_FASTDCT | TJFLAG_NOREALLOC))
        size = 0;
    return {to, to + size};
}

bool JpegCodec::decode(ByteView bytes, Picture& picture, const PixelRect& part)
{
    int width = 0;
    int height = 0;
    int sampling = 0;
    int space = 0;
    if (tjDecompressHeader3(mUnpacker.get(), bytes.data(), bytes.size(), &width, &height, &sampling,
                            &space) != 0 ||
        width != part.width || height != part.height || !isToldOnce(bytes))
        return false;
    auto* to = reinterpret_cast<unsigned char*>(picture.row(part.y) + part.x);
    return tjDecompress2(mUnpacker.get(), bytes.data(), bytes.size(), to, width,
                         picture.width() * bytesPerPixel, height, TJPF_BGRX,
                         TJFLAG_FASTDCT | TJFLAG_FASTUPSAMPLE | TJFLAG_STOPONWARNING |
                             TJFLAG_LIMITSCANS) == 0;
}

} // namespace farview
