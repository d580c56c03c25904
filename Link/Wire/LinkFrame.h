#pragma once

#include "Link/Wire/ByteReader.h"
#include "Link/Wire/LinkInput.h"
#include "Link/Wire/ScreenPacket.h"
#include "Platform/Types/PixelRect.h"

#include <array>
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
    bool typing = false; ///< this device may send keys and text

    bool operator==(const LinkOptions&) const = default;
};

/// A sign of life.
struct LinkKeepAlive {
    bool operator==(const LinkKeepAlive&) const = default;
};

enum class LinkGoodbyeCode : std::uint8_t {
    byUser = 0,
    quitting = 1,
    brokenRule = 2,
    inUse = 3,        ///< the device serves another computer, or asks its user about one
    notConfirmed = 4, ///< somebody said no, or the peer is not who it should be
    tooManyTries = 5, ///< no more strangers for some minutes
};

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

/// The feature that every side requires: TLS begins right after the answer.
inline constexpr const char* kLinkEncryptionFeature = "encryption";
/// The feature that must be agreed before anything of a picture is sent.
inline constexpr const char* kLinkScreenFeature = "screen";
/// The feature that must be agreed before rectangles are packed by zstd.
inline constexpr const char* kLinkZstdFeature = "zstd";

/// The feature that must be agreed before a device sends what its user does with the picture.
inline constexpr const char* kLinkInputFeature = "input";

/// 32 bytes: a SHA-256, or a number that nobody can guess.
using LinkDigest = std::array<std::uint8_t, 32>;

/// Whether the side that says it knows the other's key.
struct LinkStanding {
    bool knowsPeer = false;

    bool operator==(const LinkStanding&) const = default;
};

/// The device's: what its nonce will turn out to be.
struct LinkCommitment {
    LinkDigest value{};

    bool operator==(const LinkCommitment&) const = default;
};

/// A number that was chosen for this pairing.
struct LinkNonce {
    LinkDigest value{};

    bool operator==(const LinkNonce&) const = default;
};

/// The user of the side that says it has compared the digits and trusts the other.
struct LinkConfirmed {
    bool operator==(const LinkConfirmed&) const = default;
};

/// One message after the greeting.
using LinkFrame = std::variant<LinkOptions, LinkKeepAlive, LinkGoodbye, LinkScreenRectangle,
                               LinkFrameEnd, LinkPictureSize, LinkShown, LinkDeviceScreen,
                               LinkStanding, LinkCommitment, LinkNonce, LinkConfirmed, LinkTouch,
                               LinkPen, LinkPointer, LinkWheel, LinkKey, LinkText>;

enum class LinkSide { host, device };

/// Whether it belongs to the introduction: before the two know each other nothing else is said but
/// signs of life and goodbyes, and after that none of it.
inline bool isOfIntroduction(const LinkFrame& frame)
{
    return std::holds_alternative<LinkStanding>(frame) ||
           std::holds_alternative<LinkCommitment>(frame) ||
           std::holds_alternative<LinkNonce>(frame) || std::holds_alternative<LinkConfirmed>(frame);
}

/// Whether it needs the feature `input`.
inline bool isOfInput(const LinkFrame& frame)
{
    return std::holds_alternative<LinkTouch>(frame) || std::holds_alternative<LinkPen>(frame) ||
           std::holds_alternative<LinkPointer>(frame) || std::holds_alternative<LinkWheel>(frame) ||
           std::holds_alternative<LinkKey>(frame) || std::holds_alternative<LinkText>(frame);
}

/// Who may say it.
inline bool isFromHost(const LinkFrame& frame)
{
    return !isOfInput(frame) && !std::holds_alternative<LinkShown>(frame) &&
           !std::holds_alternative<LinkDeviceScreen>(frame) &&
           !std::holds_alternative<LinkCommitment>(frame);
}
inline bool isFromDevice(const LinkFrame& frame)
{
    return !isFromHost(frame) || isOfIntroduction(frame) ||
           std::holds_alternative<LinkKeepAlive>(frame) ||
           std::holds_alternative<LinkGoodbye>(frame);
}
/// The feature that must be agreed before it is said; null where the base version has it.
inline const char* featureFor(const LinkFrame& frame)
{
    if (isOfInput(frame))
        return kLinkInputFeature;
    const bool isOfPicture = isFromHost(frame) != isFromDevice(frame) &&
                             !std::holds_alternative<LinkOptions>(frame) &&
                             !isOfIntroduction(frame);
    return isOfPicture ? kLinkScreenFeature : nullptr;
}

} // namespace farview
