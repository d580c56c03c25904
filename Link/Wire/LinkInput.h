#pragma once

#include <cstdint>
#include <string>

namespace farview
{

/// A place on the picture that the device's user saw.
struct LinkPlace {
    std::uint32_t x = 0; ///< in 256ths of a pixel of the picture
    std::uint32_t y = 0;
    std::uint16_t width = 1; ///< of the picture, in pixels
    std::uint16_t height = 1;

    static constexpr std::uint32_t partsOfPixel = 256;
    bool operator==(const LinkPlace&) const = default;
};

enum class LinkTouchPhase : std::uint8_t { down = 0, motion = 1, up = 2, cancel = 3 };

/// What "full" is for a pressure on its way.
inline constexpr std::uint16_t kFullLinkPressure = 65535;

/// One finger.
struct LinkTouch {
    std::uint8_t finger = 0; ///< tells it from the others that are down; below `mostLinkFingers`
    LinkTouchPhase phase = LinkTouchPhase::down;
    LinkPlace place;
    std::uint16_t pressure = kFullLinkPressure;
    std::uint16_t contactWidth = 0; ///< in pixels of the picture; 0 where that is not known
    std::uint16_t contactHeight = 0;

    bool operator==(const LinkTouch&) const = default;
};

/// As many fingers can be down at once.
inline constexpr std::uint8_t mostLinkFingers = 16;

/// What the pen is doing now.
struct LinkPen {
    LinkPlace place;
    bool isNear = true; ///< false: it has gone, and nothing else of this counts
    bool isDown = false;
    bool isEraser = false;
    std::uint16_t pressure = 0;
    std::int8_t tiltX = 0;    ///< degrees, -90 to 90, to the right
    std::int8_t tiltY = 0;    ///< towards the user
    std::uint8_t buttons = 0; ///< of its barrel: bit 0 the lower one, bit 1 the upper one

    bool operator==(const LinkPen&) const = default;
};

/// Where the device's pointer is now, and which of its buttons are down.
struct LinkPointer {
    LinkPlace place;
    /// Bit 0 left, 1 right, 2 middle, 3 back, 4 forward.
    std::uint8_t buttons = 0;

    bool operator==(const LinkPointer&) const = default;
};

/// The wheel turned, or two fingers moved on a pad.
struct LinkWheel {
    LinkPlace place;
    std::int16_t right = 0; ///< in 120ths of a notch; what is right and below comes into sight
    std::int16_t down = 0;

    bool operator==(const LinkWheel&) const = default;
};

/// A key of the device's keyboard.
struct LinkKey {
    std::uint8_t code = 0; ///< the kernel's, as in linux/input-event-codes.h; 1 to 255
    bool isDown = false;

    bool operator==(const LinkKey&) const = default;
};

/// What the user of the device wrote without a keyboard. Foreign, printable, at most 200 bytes.
struct LinkText {
    std::string text;

    bool operator==(const LinkText&) const = default;
};

} // namespace farview
