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

/// All rectangles of a frame have been sent: it can be shown.
struct LinkFrameEnd {
    std::uint32_t number = 0; ///< one more than that of the frame before, beginning with 1

    bool operator==(const LinkFrameEnd&) const = default;
};

/// The frame, and all before it, is on the device's glass.
struct LinkShown {
    std::uint32_t number = 0;
    std::uint32_t microseconds = 0; ///< from its end's arrival to the glass, on the device's clock

    bool operator==(const LinkShown&) const = default;
};

/// The largest side of a picture, in pixels.
inline constexpr std::uint16_t kLargestPictureSide = 16384;

/// From now on the picture has this size, and is black; 0 and 0: there is none for now.
struct LinkPictureSize {
    std::uint16_t width = 0;
    std::uint16_t height = 0;

    bool operator==(const LinkPictureSize&) const = default;
};

/// What the device's own screen is, in pixels, as its user holds it.
struct LinkDeviceScreen {
    std::uint16_t width = 1;
    std::uint16_t height = 1;
    std::uint16_t scale = 100;  ///< of its user's desktop, in hundredths: 50 to 800
    std::uint16_t refresh = 60; ///< pictures a second: 1 to 1000

    bool operator==(const LinkDeviceScreen&) const = default;
};

/// The feature that must be agreed before anything of a picture is sent.
inline constexpr const char* kLinkScreenFeature = "screen";
/// The feature that must be agreed before rectangles are packed by zstd.
inline constexpr const char* kLinkZstdFeature = "zstd";

/// One message after the greeting.
using LinkFrame = std::variant<LinkOptions, LinkKeepAlive, LinkGoodbye, LinkScreenRectangle,
                               LinkFrameEnd, LinkPictureSize, LinkShown, LinkDeviceScreen>;

/// Who may say it.
inline bool isFromHost(const LinkFrame& frame)
{
    return !std::holds_alternative<LinkShown>(frame) &&
           !std::holds_alternative<LinkDeviceScreen>(frame);
}
inline bool isFromDevice(const LinkFrame& frame)
{
    return !isFromHost(frame) || std::holds_alternative<LinkKeepAlive>(frame) ||
           std::holds_alternative<LinkGoodbye>(frame);
}
/// Whether it needs the feature `screen`.
inline bool isOfPicture(const LinkFrame& frame)
{
    return isFromHost(frame) != isFromDevice(frame) && !std::holds_alternative<LinkOptions>(frame);
}

} // namespace farview
