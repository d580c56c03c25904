#include "Link/Wire/InputCodec.h"

#include "Link/Wire/LinkCodec.h"

#include <cstdlib>
#include <utility>

namespace farview
{
namespace
{

constexpr std::size_t placeSize = 12;
constexpr std::uint32_t nearBit = 1;
constexpr std::uint32_t downBit = 2;
constexpr std::uint32_t eraserBit = 4;
constexpr std::uint32_t mostPenButtons = 3;
constexpr std::uint32_t mostPointerButtons = 31;
constexpr int mostTilt = 90;

void appendPlace(Bytes& bytes, const LinkPlace& place)
{
    appendNumber(bytes, place.x, 4);
    appendNumber(bytes, place.y, 4);
    appendNumber(bytes, place.width, 2);
    appendNumber(bytes, place.height, 2);
}

LinkPlace readPlace(ByteReader& reader)
{
    const std::uint32_t x = reader.number(4);
    const std::uint32_t y = reader.number(4);
    const auto width = static_cast<std::uint16_t>(reader.number(2));
    return {x, y, width, static_cast<std::uint16_t>(reader.number(2))};
}

/// Within a picture that there can be.
bool isPossible(const LinkPlace& place)
{
    return place.width <= kLargestPictureSide && place.height <= kLargestPictureSide &&
           place.x < place.width * LinkPlace::partsOfPixel &&
           place.y < place.height * LinkPlace::partsOfPixel;
}

template <typename Value> std::optional<LinkFrame> onlyIf(bool isSound, const Value& value)
{
    return isSound ? std::optional<LinkFrame>(value) : std::nullopt;
}

std::optional<LinkFrame> readTouch(ByteReader& reader)
{
    const std::uint32_t finger = reader.number(1);
    const std::uint32_t phase = reader.number(1);
    const LinkPlace place = readPlace(reader);
    const auto pressure = static_cast<std::uint16_t>(reader.number(2));
    const auto width = static_cast<std::uint16_t>(reader.number(2));
    const auto height = static_cast<std::uint16_t>(reader.number(2));
    const bool isSound = finger < mostLinkFingers && isPossible(place) &&
                         phase <= static_cast<std::uint32_t>(LinkTouchPhase::cancel);
    return onlyIf(isSound,
                  LinkTouch{static_cast<std::uint8_t>(finger), static_cast<LinkTouchPhase>(phase),
                            place, pressure, width, height});
}

std::optional<LinkFrame> readPen(ByteReader& reader)
{
    const LinkPlace place = readPlace(reader);
    const std::uint32_t bits = reader.number(1);
    const auto pressure = static_cast<std::uint16_t>(reader.number(2));
    const auto tiltX = static_cast<std::int8_t>(reader.number(1));
    const auto tiltY = static_cast<std::int8_t>(reader.number(1));
    const std::uint32_t buttons = reader.number(1);
    const bool isSound = isPossible(place) && bits <= (nearBit | downBit | eraserBit) &&
                         std::abs(tiltX) <= mostTilt && std::abs(tiltY) <= mostTilt &&
                         buttons <= mostPenButtons;
    return onlyIf(isSound, LinkPen{place, (bits & nearBit) != 0, (bits & downBit) != 0,
                                   (bits & eraserBit) != 0, pressure, tiltX, tiltY,
                                   static_cast<std::uint8_t>(buttons)});
}

std::optional<LinkFrame> readPointer(ByteReader& reader)
{
    const LinkPlace place = readPlace(reader);
    const std::uint32_t buttons = reader.number(1);
    return onlyIf(isPossible(place) && buttons <= mostPointerButtons,
                  LinkPointer{place, static_cast<std::uint8_t>(buttons)});
}

std::optional<LinkFrame> readWheel(ByteReader& reader)
{
    const LinkPlace place = readPlace(reader);
    const auto right = static_cast<std::int16_t>(reader.number(2));
    return onlyIf(isPossible(place),
                  LinkWheel{place, right, static_cast<std::int16_t>(reader.number(2))});
}

std::optional<LinkFrame> readKey(ByteReader& reader)
{
    const std::uint32_t code = reader.number(1);
    const std::uint32_t isDown = reader.number(1);
    return onlyIf(code > 0 && isDown <= 1, LinkKey{static_cast<std::uint8_t>(code), isDown == 1});
}

} // namespace

Bytes inputPayload(const LinkTouch& value)
{
    Bytes bytes{value.finger, static_cast<std::uint8_t>(value.phase)};
    appendPlace(bytes, value.place);
    appendNumber(bytes, value.pressure, 2);
    appendNumber(bytes, value.contactWidth, 2);
    appendNumber(bytes, value.contactHeight, 2);
    return bytes;
}

Bytes inputPayload(const LinkPen& value)
{
    Bytes bytes;
    appendPlace(bytes, value.place);
    appendNumber(bytes,
                 (value.isNear ? nearBit : 0) | (value.isDown ? downBit : 0) |
                     (value.isEraser ? eraserBit : 0),
                 1);
    appendNumber(bytes, value.pressure, 2);
    bytes.push_back(static_cast<std::uint8_t>(value.tiltX));
    bytes.push_back(static_cast<std::uint8_t>(value.tiltY));
    bytes.push_back(value.buttons);
    return bytes;
}

Bytes inputPayload(const LinkPointer& value)
{
    Bytes bytes;
    appendPlace(bytes, value.place);
    bytes.push_back(value.buttons);
    return bytes;
}

Bytes inputPayload(const LinkWheel& value)
{
    Bytes bytes;
    appendPlace(bytes, value.place);
    appendNumber(bytes, static_cast<std::uint16_t>(value.right), 2);
    appendNumber(bytes, static_cast<std::uint16_t>(value.down), 2);
    return bytes;
}

Bytes inputPayload(const LinkKey& value)
{
    return {value.code, static_cast<std::uint8_t>(value.isDown)};
}

Bytes inputPayload(const LinkText& value)
{
    Bytes bytes;
    appendText(bytes, value.text);
    return bytes;
}

bool inputSizeFits(std::uint32_t kind, std::size_t size)
{
    switch (kind) {
    case InputKind::touchInput:
        return size == placeSize + 8;
    case InputKind::penInput:
        return size == placeSize + 6;
    case InputKind::pointerInput:
        return size == placeSize + 1;
    case InputKind::wheelInput:
        return size == placeSize + 4;
    case InputKind::keyInput:
        return size == 2;
    case InputKind::textInput:
        return size >= 1 && size <= 1 + kLinkTextLimit;
    default:
        return false;
    }
}

std::optional<LinkFrame> readInput(std::uint32_t kind, ByteReader& reader)
{
    switch (kind) {
    case InputKind::touchInput:
        return readTouch(reader);
    case InputKind::penInput:
        return readPen(reader);
    case InputKind::pointerInput:
        return readPointer(reader);
    case InputKind::wheelInput:
        return readWheel(reader);
    case InputKind::keyInput:
        return readKey(reader);
    default:
        break;
    }
    auto text = readText(reader);
    return text ? std::optional<LinkFrame>(LinkText{std::move(*text)}) : std::nullopt;
}

} // namespace farview
