#pragma once

#include "Link/Wire/ByteReader.h"
#include "Platform/Types/PixelRect.h"

/// What the data of a screen packet is.
enum QLScreenEncoding : std::uint8_t {
    QLScreenEncodingLibz = 0,
    QLScreenEncodingCopyRect = 1,
    QLScreenEncodingMousePos = 2,
    QLScreenEncodingMouseCursor = 3,
    QLScreenEncodingJPG = 4,
};
/// Above the five that every device knows: only with the feature "zstd".
inline constexpr std::uint8_t kScreenEncodingZstd = 5;

namespace farview
{

/// What stands before the data of a screen packet.
struct ScreenPacketHeader {
    PixelRect rectangle;
    std::uint8_t encoding = QLScreenEncodingLibz; ///< any byte: it comes from another program
    std::uint32_t dataSize = 0;

    bool operator==(const ScreenPacketHeader&) const = default;
};

/// The bytes that a header takes, without gaps.
inline constexpr std::size_t kScreenPacketHeaderSize = 13;

void appendScreenPacketHeader(Bytes& bytes, const ScreenPacketHeader& header);
ScreenPacketHeader readScreenPacketHeader(ByteReader& reader);

} // namespace farview
