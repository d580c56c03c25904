#pragma once

#include "Link/Wire/ByteReader.h"
#include "Link/Wire/LinkFrame.h"
#include "Link/Wire/LinkGreeting.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace farview
{

/// Bounds of the wire format.
inline constexpr std::size_t kLinkGreetingLimit = 512;
inline constexpr std::size_t kLinkTextLimit = 200;
inline constexpr std::size_t kLinkFeatureLimit = 16;
inline constexpr std::size_t kLinkFeatureNameLimit = 24;
inline constexpr std::size_t kLinkFrameHeaderSize = 8;
inline constexpr std::size_t kLinkScreenDataLimit = std::size_t{16} << 20;
/// Of the payloads of frames; the short ones are all that is said before the two know each other.
inline constexpr std::size_t kLinkPayloadLimit = kScreenPacketHeaderSize + kLinkScreenDataLimit;
inline constexpr std::size_t kLinkShortPayloadLimit = 2 + kLinkTextLimit;

enum class DecodeStatus {
    incomplete, ///< a good beginning: more bytes are needed
    complete,   ///< `value` stands for the first `consumed` bytes
    malformed,  ///< these bytes never become a value, whatever follows
};

/// What the beginning of a stream of bytes turned out to be.
template <typename Value> struct Decoded {
    DecodeStatus status = DecodeStatus::incomplete;
    std::size_t consumed = 0;
    Value value{};
};

/// Values to bytes. Texts are made printable and cut to their limits; features beyond the limits
/// are a programming error and are left out.
Bytes encodeGreeting(const LinkGreeting& greeting);
Bytes encodeAnswer(const LinkAnswer& answer);
Bytes encodeFrame(const LinkFrame& frame);
/// The frame without the data of a screen rectangle, which follow as they are: whoever sends them
/// need not copy them.
Bytes encodeFrameHead(const LinkFrame& frame);

/// Bytes to values. Looks at nothing behind the first value. A wrong beginning, and a size
/// beyond its limit (for a frame also beyond `mostPayload`), is noticed before the bytes it
/// announces.
Decoded<LinkGreeting> decodeGreeting(ByteView bytes);
Decoded<LinkAnswer> decodeAnswer(ByteView bytes);
Decoded<LinkFrame> decodeFrame(ByteView bytes, std::size_t mostPayload = kLinkPayloadLimit);

/// The text as it may be shown: control characters become blanks, bytes that are no UTF-8 become
/// "?", and what exceeds `limit` bytes is cut at a character's border.
std::string plainLinkText(std::string_view text, std::size_t limit);

} // namespace farview
