#pragma once

#include "Common/Rules/ScreenPlacement.h"
#include "Platform/Types/PropertyList.h"

#include <optional>

namespace farview
{

/// A device's own screen, as it tells it.
struct DeviceScreen {
    int width = 0; ///< in pixels
    int height = 0;
    double scale = 0; ///< how many of its pixels are one point

    bool operator==(const DeviceScreen&) const = default;
};

/// What is kept of a device's monitor from one connection to the next. What is nothing or 0 was not
/// chosen.
struct RememberedScreen {
    std::optional<ScreenSide> side = {};
    /// Size and scale that the user gave the monitor with the desktop's own means, while the device
    /// had that screen.
    int width = 0;
    int height = 0;
    double scale = 0;
    DeviceScreen device = {};

    bool operator==(const RememberedScreen&) const = default;
};

PropertyList::Dictionary storedScreen(const RememberedScreen& screen);
/// Of a stored value of any kind; what it does not hold, or holds wrongly, was not chosen.
RememberedScreen rememberedScreen(const PropertyList& stored);

/// A monitor's size and scale.
struct ScreenMeasure {
    int width = 0;
    int height = 0;
    double scale = 1;

    bool operator==(const ScreenMeasure&) const = default;
};

/// What the user's options and the device's screen come to. Without full resolution a device that
/// is twice as sharp gets half of its pixels in both directions. The sides stay within what
/// programs and networks can use.
ScreenMeasure measureFor(const DeviceScreen& device, bool fullResolution, bool hiDPI,
                         const RememberedScreen& remembered);

} // namespace farview
