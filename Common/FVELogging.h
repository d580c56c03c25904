#pragma once

#include "Link/Wire/ScreenPacket.h"
#include "Platform/Types/PixelRect.h"

#include <cstdint>
#include <string>

/// The names that other programs know pixel geometry by.
using QLSimplePoint = farview::PixelPoint;
using QLSimpleRect = farview::PixelRect;

/// What the name of a folder with logged packets begins with; the date follows, in brackets.
inline constexpr const char* kFVELoggingFolderName = "FarviewLogging";

/// From now on every screen packet is written to a new folder in the user's home, which only the
/// user can read. Called again, it goes on in another folder. For debugging; for the life of the
/// process. Whoever logs packets from a thread of its own calls this there too.
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
/// nothing while logging is off. `header` points to the 13 bytes that travel, or is null; `data` to
/// `length` bytes, or is null. That the file cannot be written is told to nobody.
void NSLogScreenRectangle(const std::uint8_t* header, const std::uint8_t* data,
                          std::int64_t length);

namespace farview
{

/// What `NSLogScreenRectangle` does. False when logging is off and when the data could not be
/// written.
bool logScreenRectangle(const std::uint8_t* header, ByteView data);

} // namespace farview
