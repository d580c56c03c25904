#include "Link/Wire/ScreenPacket.h"

#include <bit>

namespace farview
{

// The packet log reads headers in this computer's byte order, the link little-endian ones.
static_assert(std::endian::native == std::endian::little, "see docs/decisions/072");

void appendScreenPacketHeader(Bytes& bytes, const ScreenPacketHeader& header)
{
    const PixelRect& rect = header.rectangle;
    for (const std::int16_t number : {rect.x, rect.y, rect.width, rect.height})
        appendNumber(bytes, static_cast<std::uint16_t>(number), 2);
    appendNumber(bytes, header.encoding, 1);
    appendNumber(bytes, header.dataSize, 4);
}

ScreenPacketHeader readScreenPacketHeader(ByteReader& reader)
{
    ScreenPacketHeader header;
    PixelRect& rect = header.rectangle;
    for (std::int16_t* number : {&rect.x, &rect.y, &rect.width, &rect.height})
        *number = static_cast<std::int16_t>(reader.number(2));
    header.encoding = static_cast<std::uint8_t>(reader.number(1));
    header.dataSize = reader.number(4);
    return header;
}

} // namespace farview
