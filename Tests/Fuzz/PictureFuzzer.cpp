// A device's picture, given whatever frames a host may send.
#include "Link/Wire/LinkCodec.h"
#include "Screen/Codecs/JpegCodec.h"
#include "Screen/Codecs/ZlibCodec.h"
#include "Screen/Codecs/ZstdCodec.h"
#include "Screen/PictureReceiver.h"
#include "Tests/Fuzz/Expect.h"

namespace
{

using namespace farview;

constexpr int side = 96;

struct Device {
    ZlibCodec zlib;
    ZstdCodec zstd;
    JpegCodec jpeg;
    PictureReceiver receiver{side, side, zlib, {&zstd, &jpeg}};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    Device device;
    ByteView rest(bytes, size);
    for (;;) {
        const auto frame = decodeFrame(rest);
        if (frame.status != DecodeStatus::complete)
            return 0;
        rest = rest.subspan(frame.consumed);
        const auto* packet = std::get_if<LinkScreenRectangle>(&frame.value);
        if (packet && !device.receiver.apply(*packet))
            return 0;
        for (const auto& part : device.receiver.takeChanged())
            expect(device.receiver.picture().view().holds(part), "what changed lies inside");
    }
}
