#pragma once

#include "Platform/Types/PixelRect.h"
#include "Platform/Types/ScreenObstacle.h"
#include "Platform/Types/ScreenWay.h"
#include "Platform/Types/WindowKeeping.h"

#include <string>
#include <vector>

namespace farview
{

/// What became of the monitor for the device that is connected, or would become of one, as the
/// server tells the others.
struct ScreenReport {
    enum class State {
        none,    ///< no device is connected, or one that shows no picture
        coming,  ///< it is being made
        shown,   ///< it is there, and its picture is sent
        missing, ///< the device is connected without a picture
        // While no device is connected.
        possible,   ///< one would get a picture
        impossible, ///< none would get one
    };

    State state = State::none;
    ScreenObstacle obstacle = ScreenObstacle::failed; ///< while it is missing or impossible
    ScreenWay way = ScreenWay::spareOutput;           ///< while it is possible

    // While it is shown.
    int width = 0; ///< in pixels
    int height = 0;
    double scale = 1; ///< how many pixels are one point
    double rate = 0;  ///< pictures a second; 0 when the desktop does not say
    /// Who takes windows back from it.
    WindowKeeping windows = WindowKeeping::nobody;
    /// How many get through at a time; a single one is the pointer.
    enum class Fingers {
        several,
        one,
        oneWithoutARight, ///< several would, if an administrator allowed it
    } fingers = Fingers::several;
    /// The device's user has used its keyboard within the last seconds.
    bool isTyping = false;
    PixelRect monitor = {}; ///< where it is, in the desktop's own units
    /// All other screens, in the same units; the main one first. At most `mostScreens`.
    std::vector<PixelRect> screens = {};

    static constexpr std::size_t mostScreens = 16;

    /// Whether `obstacle` counts.
    bool isObstructed() const { return state == State::missing || state == State::impossible; }
    /// Whether it tells what would become of a device's monitor.
    bool isOutlook() const { return state == State::possible || state == State::impossible; }
    bool operator==(const ScreenReport&) const = default;
};

/// The report as it travels: a word and numbers.
std::string textOfScreenReport(const ScreenReport& report);
/// Of a foreign text; what cannot be read, or no text, is a report of nothing.
ScreenReport screenReport(const std::string* text);

} // namespace farview
