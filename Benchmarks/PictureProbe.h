#pragma once

#include "Platform/Desktop/Screens/X11/XConnection.h"
#include "Platform/Types/PixelRect.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// Reads what an X display shows, and sleeps while nothing there changes.
class PictureProbe
{
public:
    /// Throws when there is no such display.
    explicit PictureProbe(const std::string& display);

    /// Waits for the next change since the last call that returned true. False when there is none
    /// within `limit`.
    bool waitForChange(std::chrono::milliseconds limit);
    /// The pixels there, row by row; the highest byte is 0. Empty where the display has none.
    std::vector<std::uint32_t> read(const PixelRect& part);
    /// The number of the picture that stands in the display's corner; nothing when none does.
    std::optional<std::uint16_t> number();

private:
    bool takeChange();

    XConnection mConnection;
    xcb_window_t mRoot = 0;
    std::uint32_t mDamage = 0;
    std::uint8_t mDamageEvent = 0;
};

} // namespace farview
