#pragma once

#include "Link/Wire/ByteReader.h"
#include "Link/Wire/ScreenPacket.h"
#include "Platform/Types/PixelRect.h"

#include <cstdint>
#include <string>
#include <variant>

namespace farview
{

/// What the user set on the host and the device is to know.
struct LinkOptions {
    bool touch = false;
    bool retina = false;
    bool hiDPI = false;
    bool windowsMoveBack = false;

    bool operator==(const LinkOptions&) const = default;
};

/// A sign of life.
struct LinkKeepAlive {
    bool operator==(const LinkKeepAlive&) const = default;
};

enum class LinkGoodbyeCode : std::uint8_t { byUser = 0, quitting = 1, brokenRule = 2 };

/// The last thing a side says. The text is foreign, printable and at most 200 bytes.
struct LinkGoodbye {
    LinkGoodbyeCode code = LinkGoodbyeCode::byUser;
    std::string text;

    bool operator==(const LinkGoodbye&) const = default;
};

/// One update of the screen: a screen packet, whose header says the size of `data` too.
struct LinkScreenRectangle {
    PixelRect rectangle;
    std::uint8_t encoding = QLScreenEncodingLibz; ///< any byte, as in the header
    Bytes data;

    bool operator==(const LinkScreenRectangle&) const = default;
};

/// The feature that must be agreed before a screen rectangle is sent.
inline constexpr const char* kLinkScreenFeature = "screen";

/// One message after the greeting.
using LinkFrame = std::variant<LinkOptions, LinkKeepAlive, LinkGoodbye, LinkScreenRectangle>;

} // namespace farview
