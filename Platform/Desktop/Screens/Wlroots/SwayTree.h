#pragma once

#include "Platform/Types/PixelRect.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class QJsonDocument;

namespace farview
{

/// Where a window of sway's is.
struct SwayStand {
    std::string workspace;
    bool isFloating = false;
    bool isFull = false;
    PixelPoint corner; ///< counts where it floats; on a monitor of ours from the monitor's corner

    bool operator==(const SwayStand&) const = default;
};

/// What is written on a window that is on a monitor of ours, or was when that went.
struct SwayNote {
    std::uint32_t monitor = 0; ///< a number of its name
    bool isThere = false;      ///< the monitor has not gone
    SwayStand there;           ///< on the monitor
    /// Where it was before it came there, or is since the monitor went.
    std::optional<SwayStand> home;

    bool operator==(const SwayNote&) const = default;
};

struct SwayWindow {
    std::int64_t id = 0;
    std::string output;
    SwayStand stand; ///< its corner on the desktop
    std::optional<SwayNote> note;
    std::string mark; ///< that the note was read from
};

struct SwayOutput {
    std::string name;
    PixelPoint corner;
    std::string workspace; ///< that it shows
};

/// What sway shows. Windows that it hides are left out.
struct SwayTree {
    std::vector<SwayOutput> outputs;
    std::vector<SwayWindow> windows;
    std::string focusedOutput;
};

/// Of sway's answer. What is no window or output in it is passed over.
SwayTree swayTreeIn(const QJsonDocument& answer);

/// A mark for the window, which sway does not show to the user. It lives as long as the window.
std::string swayMark(std::int64_t window, const SwayNote& note);

/// The same for each monitor of that name.
std::uint32_t swayMonitorNumber(const std::string& monitorName);

} // namespace farview
