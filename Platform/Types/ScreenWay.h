#pragma once

namespace farview
{

/// How a desktop gets an additional monitor.
enum class ScreenWay {
    spareOutput,    ///< X11: an output without a plug is switched on
    namedMonitor,   ///< X11: the server is told of a monitor that no output shows
    gnome,          ///< its window manager makes one
    sway,           ///< it makes an output, and removes it
    swayKept,       ///< it makes an output, and cannot remove it: it is used again
    hyprland,       ///< it makes an output, and removes it
    plasma,         ///< its window manager makes one
    portal,         ///< the desktop's portal asks the user, and makes one
    existingScreen, ///< the portal shows one that the user has: nothing is added
};

} // namespace farview
