#include "Link/Wire/LinkCodec.h"

#include "Link/Wire/ByteReader.h"
#include "Link/Wire/InputCodec.h"
#include "Link/Wire/ScreenPacket.h"

#include <algorithm>

namespace farview
{

namespace
{

enum FrameKind : std::uint8_t {
    options = 1,
    keepAlive = 2,
    goodbye = 3,
    standing = 4,
    commitment = 5,
    nonce = 6,
    confirmed = 7,
    screenRectangle = 16,
    frameEnd = 17,
    shown = 18,
    pictureSize = 19,
    deviceScreen = 20,
};

constexpr std::uint32_t touchBit = 1;
constexpr std::uint32_t retinaBit = 2;
constexpr std::uint32_t hiDPIBit = 4;
constexpr std::uint32_t windowsMoveBackBit = 8;
constexpr std::uint32_t typingBit = 16;

struct FrameBody {
    std::uint32_t kind;
    Bytes payload;
    std::size_t dataSize = 0; ///< of what follows the payload as it is
};

FrameBody body(const LinkOptions& value)
{
    const std::uint32_t bits = (value.touch ? touchBit : 0) | (value.retina ? retinaBit : 0) |
                               (value.hiDPI ? hiDPIBit : 0) |
                               (value.windowsMoveBack ? windowsMoveBackBit : 0) |
                               (value.typing ? typingBit : 0);
    FrameBody result{FrameKind::options, {}};
    appendNumber(result.payload, bits, 4);
    return result;
}

FrameBody body(const LinkKeepAlive&) { return {FrameKind::keepAlive, {}}; }

FrameBody body(const LinkGoodbye& value)
{
    FrameBody result{FrameKind::goodbye, {}};
    appendNumber(result.payload, static_cast<std::uint32_t>(value.code), 1);
    appendText(result.payload, value.text);
    return result;
}

FrameBody body(const LinkScreenRectangle& value)
{
    FrameBody result{FrameKind::screenRectangle, {}, value.data.size()};
    appendScreenPacketHeader(result.payload, {value.rectangle, value.encoding,
                                              static_cast<std::uint32_t>(value.data.size())});
    return result;
}

FrameBody numbers(FrameKind kind, std::initializer_list<std::uint32_t> values, std::size_t size)
{
    FrameBody result{kind, {}};
    for (const std::uint32_t value : values)
        appendNumber(result.payload, value, size);
    return result;
}

FrameBody body(const LinkFrameEnd& value)
{
    return numbers(FrameKind::frameEnd, {value.number}, 4);
}

FrameBody body(const LinkShown& value)
{
    return numbers(FrameKind::shown, {value.number, value.microseconds}, 4);
}

FrameBody body(const LinkPictureSize& value)
{
    return numbers(FrameKind::pictureSize, {value.width, value.height}, 2);
}

FrameBody body(const LinkDeviceScreen& value)
{
    return numbers(FrameKind::deviceScreen, {value.width, value.height, value.scale, value.refresh},
                   2);
}

FrameBody body(const LinkStanding& value)
{
    return numbers(FrameKind::standing, {value.knowsPeer ? 1U : 0U}, 1);
}

FrameBody digestBody(FrameKind kind, const LinkDigest& value)
{
    return {kind, {value.begin(), value.end()}};
}

FrameBody body(const LinkCommitment& value)
{
    return digestBody(FrameKind::commitment, value.value);
}

FrameBody body(const LinkNonce& value) { return digestBody(FrameKind::nonce, value.value); }

FrameBody body(const LinkConfirmed&) { return {FrameKind::confirmed, {}}; }

FrameBody body(const LinkTouch& value) { return {InputKind::touchInput, inputPayload(value)}; }
FrameBody body(const LinkPen& value) { return {InputKind::penInput, inputPayload(value)}; }
FrameBody body(const LinkPointer& value) { return {InputKind::pointerInput, inputPayload(value)}; }
FrameBody body(const LinkWheel& value) { return {InputKind::wheelInput, inputPayload(value)}; }
FrameBody body(const LinkKey& value) { return {InputKind::keyInput, inputPayload(value)}; }
FrameBody body(const LinkText& value) { return {InputKind::textInput, inputPayload(value)}; }

/// Whether a payload of that size can belong to that kind at all.
bool sizeFits(std::uint32_t kind, std::size_t size)
{
    switch (kind) {
    case FrameKind::options:
    case FrameKind::frameEnd:
    case FrameKind::pictureSize:
        return size == 4;
    case FrameKind::shown:
    case FrameKind::deviceScreen:
        return size == 8;
    case FrameKind::keepAlive:
    case FrameKind::confirmed:
        return size == 0;
    case FrameKind::standing:
        return size == 1;
    case FrameKind::commitment:
    case FrameKind::nonce:
        return size == LinkDigest{}.size();
    case FrameKind::goodbye:
        return size >= 2 && size <= kLinkShortPayloadLimit;
    case FrameKind::screenRectangle:
        return size >= kScreenPacketHeaderSize && size <= kLinkPayloadLimit;
    default:
        return inputSizeFits(kind, size);
    }
}

std::optional<LinkFrame> readOptions(ByteReader& reader)
{
    const std::uint32_t bits = reader.number(4);
    if ((bits & ~(touchBit | retinaBit | hiDPIBit | windowsMoveBackBit | typingBit)) != 0)
        return std::nullopt;
    return LinkOptions{(bits & touchBit) != 0, (bits & retinaBit) != 0, (bits & hiDPIBit) != 0,
                       (bits & windowsMoveBackBit) != 0, (bits & typingBit) != 0};
}

std::optional<LinkFrame> readGoodbye(ByteReader& reader)
{
    const std::uint32_t code = reader.number(1);
    auto text = readText(reader);
    if (!text)
        return std::nullopt;
    const bool known = code <= static_cast<std::uint32_t>(LinkGoodbyeCode::tooManyTries);
    return LinkGoodbye{known ? static_cast<LinkGoodbyeCode>(code) : LinkGoodbyeCode::byUser,
                       std::move(*text)};
}

std::optional<LinkFrame> readScreenRectangle(ByteReader& reader)
{
    const ScreenPacketHeader header = readScreenPacketHeader(reader);
    const ByteView data = reader.bytes(header.dataSize);
    return LinkScreenRectangle{header.rectangle, header.encoding, {data.begin(), data.end()}};
}

std::optional<std::uint16_t> readWithin(ByteReader& reader, std::uint16_t least, std::uint16_t most)
{
    const auto value = static_cast<std::uint16_t>(reader.number(2));
    return value >= least && value <= most ? std::optional(value) : std::nullopt;
}

std::optional<LinkFrame> readPictureSize(ByteReader& reader)
{
    const auto width = readWithin(reader, 0, kLargestPictureSide);
    const auto height = readWithin(reader, 0, kLargestPictureSide);
    if (!width || !height || (*width == 0) != (*height == 0))
        return std::nullopt;
    return LinkPictureSize{*width, *height};
}

std::optional<LinkFrame> readDeviceScreen(ByteReader& reader)
{
    const auto width = readWithin(reader, 1, kLargestPictureSide);
    const auto height = readWithin(reader, 1, kLargestPictureSide);
    const auto scale = readWithin(reader, 50, 800);
    const auto refresh = readWithin(reader, 1, 1000);
    if (!width || !height || !scale || !refresh)
        return std::nullopt;
    return LinkDeviceScreen{*width, *height, *scale, *refresh};
}

LinkShown readShown(ByteReader& reader)
{
    const std::uint32_t number = reader.number(4);
    return {number, reader.number(4)};
}

std::optional<LinkFrame> readStanding(ByteReader& reader)
{
    const std::uint32_t value = reader.number(1);
    return value <= 1 ? std::optional<LinkFrame>(LinkStanding{value == 1}) : std::nullopt;
}

LinkDigest readDigest(ByteReader& reader)
{
    LinkDigest digest{};
    const ByteView bytes = reader.bytes(digest.size());
    std::copy(bytes.begin(), bytes.end(), digest.begin());
    return digest;
}

std::optional<LinkFrame> readFrame(std::uint32_t kind, ByteReader& reader)
{
    switch (kind) {
    case FrameKind::options:
        return readOptions(reader);
    case FrameKind::keepAlive:
        return LinkKeepAlive{};
    case FrameKind::goodbye:
        return readGoodbye(reader);
    case FrameKind::frameEnd:
        return LinkFrameEnd{reader.number(4)};
    case FrameKind::shown:
        return readShown(reader);
    case FrameKind::pictureSize:
        return readPictureSize(reader);
    case FrameKind::deviceScreen:
        return readDeviceScreen(reader);
    case FrameKind::standing:
        return readStanding(reader);
    case FrameKind::commitment:
        return LinkCommitment{readDigest(reader)};
    case FrameKind::nonce:
        return LinkNonce{readDigest(reader)};
    case FrameKind::confirmed:
        return LinkConfirmed{};
    case FrameKind::screenRectangle:
        return readScreenRectangle(reader);
    default:
        return readInput(kind, reader);
    }
}

} // namespace

Bytes encodeFrameHead(const LinkFrame& frame)
{
    const auto [kind, payload, dataSize] =
        std::visit([](const auto& value) { return body(value); }, frame);
    Bytes bytes;
    appendNumber(bytes, kind, 4);
    appendNumber(bytes, static_cast<std::uint32_t>(payload.size() + dataSize), 4);
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return bytes;
}

Bytes encodeFrame(const LinkFrame& frame)
{
    Bytes bytes = encodeFrameHead(frame);
    if (const auto* rectangle = std::get_if<LinkScreenRectangle>(&frame))
        bytes.insert(bytes.end(), rectangle->data.begin(), rectangle->data.end());
    return bytes;
}

Decoded<LinkFrame> decodeFrame(ByteView bytes, std::size_t mostPayload)
{
    Decoded<LinkFrame> result;
    if (bytes.size() < kLinkFrameHeaderSize)
        return result;
    ByteReader header(bytes);
    const std::uint32_t kind = header.number(4);
    const std::size_t size = header.number(4);
    const std::size_t whole = kLinkFrameHeaderSize + size;
    const bool isPossible = size <= mostPayload && sizeFits(kind, size);
    if (isPossible && bytes.size() < whole)
        return result;
    result.status = DecodeStatus::malformed;
    if (!isPossible)
        return result;
    ByteReader reader(bytes.subspan(kLinkFrameHeaderSize, size));
    std::optional<LinkFrame> frame = readFrame(kind, reader);
    if (frame.has_value() && reader.isExhausted())
        result = {DecodeStatus::complete, whole, std::move(*frame)};
    return result;
}

} // namespace farview
