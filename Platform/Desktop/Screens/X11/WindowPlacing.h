#pragma once

#include "Platform/Types/PixelRect.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace farview
{

/// What its window manager stretches a window to.
struct WindowStretch {
    bool isWide = false; ///< from the left edge of the screen to the right one
    bool isHigh = false;
    bool isFull = false; ///< over everything

    bool isAny() const { return isWide || isHigh || isFull; }
    bool operator==(const WindowStretch&) const = default;
};

/// How far a window's frame reaches beyond what its program draws; less than nothing where the
/// program draws a shadow around it.
struct WindowMargins {
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;
};

/// Where a window is, without its frame, on the desktop.
struct WindowStand {
    PixelRect area;
    /// Where it last was without being stretched; empty when nobody saw that.
    PixelRect normal;
    WindowStretch stretch;

    bool operator==(const WindowStand&) const = default;
};

/// What is known of a window that is on a monitor of ours, or was when that went.
struct WindowNote {
    std::uint32_t monitor = 0; ///< a number of its name
    bool isThere = false;      ///< the monitor has not gone
    bool isKept = false;       ///< it is to return with the monitor
    PixelRect monitorArea;
    WindowStand there; ///< on the monitor
    /// Where it was before it came there, or is since the monitor went.
    std::optional<WindowStand> home = {};

    bool operator==(const WindowNote&) const = default;
};

/// Its form in a property.
std::vector<std::uint32_t> noteNumbers(const WindowNote& note);
/// Nothing when it is none: any program may write there.
std::optional<WindowNote> noteOf(std::span<const std::uint32_t> numbers);

PixelRect framed(const PixelRect& area, const WindowMargins& frame);
/// Whether the middle of the window is there.
bool isOn(const PixelRect& window, const PixelRect& screen);
bool isWhollyOn(const PixelRect& window, const PixelRect& screen);
bool overlap(const PixelRect& left, const PixelRect& right);

/// The nearest place that is wholly on the screen with its frame; smaller where it does not fit.
PixelRect broughtIntoSight(const PixelRect& area, const WindowMargins& frame,
                           const PixelRect& screen);

/// Where a window goes whose monitor goes: home; one that has none, or whose home no screen shows,
/// onto the first of the screens, of which there is one. `now`: where it is without being
/// stretched.
PixelRect placeBack(const PixelRect& now, const WindowMargins& frame,
                    const std::optional<WindowStand>& home, const std::vector<PixelRect>& screens);
/// Where it goes when its monitor is elsewhere, or has returned: to the same place on it.
PixelRect placeOnMonitor(const PixelRect& now, const WindowMargins& frame, const WindowNote& note,
                         const PixelRect& monitor);

} // namespace farview
