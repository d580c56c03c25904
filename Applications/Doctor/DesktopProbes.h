#pragma once

#include "Applications/Doctor/Finding.h"

#include <cstddef>
#include <optional>
#include <string>

namespace farview
{

struct SessionFacts;

/// What the desktop lets the system's programs do.
struct AccessibilityFacts {
    bool isEnabled = false;
};

Findings findingsAboutAccessibility(const AccessibilityFacts& facts);

struct X11Outputs {
    std::size_t online = 0; ///< show something
    std::size_t spare = 0;  ///< could show something and do not
};

/// What windows are shown on, and what it offers for screens that are no monitors.
struct DisplayFacts {
    std::string x11;                ///< DISPLAY
    std::string wayland;            ///< WAYLAND_DISPLAY
    std::string desktop;            ///< as the session names it: "GNOME"
    int mutterScreenCast = 0;       ///< as in `SessionFacts`
    unsigned portalSourceTypes = 0; ///< as in `SessionFacts`
    bool hasSway = false;           ///< whose command creates outputs
    /// The X server's outputs; nothing when it did not tell.
    std::optional<X11Outputs> x11Outputs{};
};

DisplayFacts displayFacts(const SessionFacts& session);
Findings findingsAboutDisplay(const DisplayFacts& facts);

} // namespace farview
