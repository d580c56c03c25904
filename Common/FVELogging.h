#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

/// What the data of a screen packet is.
enum QLScreenEncoding : std::uint8_t {
    QLScreenEncodingLibz = 0,
    QLScreenEncodingCopyRect = 1,
    QLScreenEncodingMousePos = 2,
    QLScreenEncodingMouseCursor = 3,
    QLScreenEncodingJPG = 4,
};

/// A place on a screen, in pixels.
struct QLSimplePoint {
    std::int16_t x = 0;
    std::int16_t y = 0;

    bool operator==(const QLSimplePoint&) const = default;
};

/// A part of a screen, in pixels.
struct QLSimpleRect {
    std::int16_t x = 0;
    std::int16_t y = 0;
    std::int16_t width = 0;
    std::int16_t height = 0;

    bool operator==(const QLSimpleRect&) const = default;
};

/// What stands before the data of a screen packet.
struct QLScreenRectangleHeader {
    QLSimpleRect rectangle;
    std::uint8_t encoding = QLScreenEncodingLibz; ///< any byte: it comes from another program
    std::uint32_t dataSize = 0;

    bool operator==(const QLScreenRectangleHeader&) const = default;
};

inline constexpr std::size_t kQLScreenRectangleHeaderSize = 13;
/// A header as it lies in a packet: rectangle, encoding and size without gaps, in this computer's
/// byte order.
using QLPackedScreenRectangleHeader = std::array<std::uint8_t, kQLScreenRectangleHeaderSize>;

QLPackedScreenRectangleHeader packedScreenRectangleHeader(const QLScreenRectangleHeader& header);
/// `packed` points to 13 bytes, anywhere in a packet.
QLScreenRectangleHeader unpackedScreenRectangleHeader(const std::uint8_t* packed);

/// From now on every screen packet is written to a new folder in the user's home, which only the
/// user can read. Called again, it goes on in another folder. For debugging; for the life of the
/// process.
void EnableLoggingScreenRectangleLogging();
bool IsEnableLoggingScreenRectangleLogging();

/// The encoding's name; "Undefined encoding" for a code that stands for none.
std::string NSStringFromEncoding(std::uint8_t encoding);
/// The extension of a file with such data, without a dot; "undefined" for a code that stands for
/// none.
std::string NSStringExtensionFromEncoding(std::uint8_t encoding);

/// "{ 1, 2 }"
std::string NSStringFromQLSimplePoint(const QLSimplePoint& point);
/// "{ { -1, 2 }, { 300, -4 } }"
std::string NSStringFromQLSimpleRect(const QLSimpleRect& rect);

/// Logs a packet and, when it has data, writes the data to a file of its own in the folder. Does
/// nothing while logging is off. `header` points to the 13 packed bytes, or is null; `data` to
/// `length` bytes, or is null. That the file cannot be written is told to nobody.
void NSLogScreenRectangle(const std::uint8_t* header, const std::uint8_t* data,
                          std::int64_t length);
