#pragma once

#include "Applications/Doctor/Finding.h"

#include <cstddef>
#include <optional>
#include <string>

namespace farview
{

struct Platform;
class SessionBus;

/// What the desktop lets the system's programs do.
struct AccessibilityFacts {
    bool isEnabled = false;
};

AccessibilityFacts accessibilityFacts(const Platform& platform);
Findings findingsAboutAccessibility(const AccessibilityFacts& facts);

struct X11Outputs {
    std::size_t online = 0; ///< show something
    std::size_t spare = 0;  ///< could show something and do not
};

/// What windows are shown on, and what it offers for screens that are no monitors.
struct DisplayFacts {
    std::string x11;     ///< DISPLAY
    std::string wayland; ///< WAYLAND_DISPLAY
    std::string desktop; ///< as the session names it: "GNOME"
    /// Mutter's screen casts, which can record a virtual monitor: the interface's version, 0 where
    /// there is none.
    int mutterScreenCast = 0;
    /// The portal's screen casts: its bits for monitors (1), windows (2), virtual monitors (4).
    unsigned portalSourceTypes = 0;
    bool hasSway = false; ///< whose command creates outputs
    /// The X server's outputs; nothing when it did not tell.
    std::optional<X11Outputs> x11Outputs{};
};

DisplayFacts displayFacts(SessionBus& bus);
Findings findingsAboutDisplay(const DisplayFacts& facts);

} // namespace farview
