// Headers of screen packets, alone and in the frames of the link.

#include "Common/FVELogging.h"
#include "Link/Wire/LinkCodec.h"
#include "Tests/Fuzz/Expect.h"

#include <algorithm>

namespace
{

void readHeader(farview::ByteView bytes)
{
    farview::ByteReader reader(bytes);
    const auto header = farview::readScreenPacketHeader(reader);
    farview::Bytes again;
    farview::appendScreenPacketHeader(again, header);
    expect(std::equal(again.begin(), again.end(), bytes.begin()), "a header is packed as it was");
    expect(!NSStringFromQLSimpleRect(header.rectangle).empty(), "a rectangle has a text");
    expect(!NSStringFromEncoding(header.encoding).empty(), "an encoding has a name");
    expect(!NSStringExtensionFromEncoding(header.encoding).empty(), "and an extension");
}

void readFrame(farview::ByteView bytes)
{
    const auto frame = farview::decodeFrame(bytes);
    if (frame.status != farview::DecodeStatus::complete)
        return;
    expect(frame.consumed <= bytes.size(), "a frame ends within its bytes");
    const auto written = farview::encodeFrame(frame.value);
    const auto again = farview::decodeFrame(written);
    expect(again.status == farview::DecodeStatus::complete && again.value == frame.value,
           "a frame is read as it was written");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    if (size >= farview::kScreenPacketHeaderSize)
        readHeader({bytes, size});
    readFrame({bytes, size});
    return 0;
}
