#pragma once

#include "Link/Wire/ByteReader.h"
#include "Link/Wire/LinkFrame.h"

#include <cstdint>
#include <optional>

namespace farview
{

/// The frames of the feature `input` as they travel: their kinds and payloads. `LinkCodec` puts the
/// header around them.
enum InputKind : std::uint8_t {
    touchInput = 32,
    penInput = 33,
    pointerInput = 34,
    wheelInput = 35,
    keyInput = 36,
    textInput = 37,
};

Bytes inputPayload(const LinkTouch& value);
Bytes inputPayload(const LinkPen& value);
Bytes inputPayload(const LinkPointer& value);
Bytes inputPayload(const LinkWheel& value);
Bytes inputPayload(const LinkKey& value);
Bytes inputPayload(const LinkText& value);

/// Whether a payload of that size can belong to that kind; false for all other kinds.
bool inputSizeFits(std::uint32_t kind, std::size_t size);
/// Of a kind and a size that fit. Nothing when a number in it means nothing.
std::optional<LinkFrame> readInput(std::uint32_t kind, ByteReader& reader);

} // namespace farview
