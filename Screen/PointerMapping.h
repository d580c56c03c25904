#pragma once

#include "Link/Wire/LinkInput.h"
#include "Platform/Types/PixelRect.h"

#include <optional>

namespace farview
{

/// A monitor, as it takes a device's input: what it shows of the desktop, in the desktop's own
/// units, and its pixels, which are those of its picture.
struct MonitorPlace {
    PixelRect area;
    int width = 0;
    int height = 0;
};

/// A place on a monitor, in its own pixels and in the desktop's units.
struct MappedPlace {
    double x = 0;
    double y = 0;
    double desktopX = 0;
    double desktopY = 0;

    bool operator==(const MappedPlace&) const = default;
};

/// What a place on the picture means on the desktop: never a place outside the monitor. Nothing
/// when the picture that the user saw had another size than the monitor has now: what was there
/// then may be somewhere else.
std::optional<MappedPlace> mappedPlace(const LinkPlace& place, const MonitorPlace& monitor);

/// A picture on the device's screen, both in pixels of that screen. It may be larger or smaller
/// than the picture's own size, be surrounded by black, and reach outside.
struct PictureOnGlass {
    double left = 0;
    double top = 0;
    double width = 1;  ///< as it is drawn
    double height = 1; ///< as it is drawn
    int pictureWidth = 1;
    int pictureHeight = 1;
};

/// Which place of the picture the user meant with a place on the glass. Nothing beside the picture,
/// unless `isHeld`: who has begun on the picture and moves off it, stays at its edge.
std::optional<LinkPlace> picturePlace(double glassX, double glassY, const PictureOnGlass& picture,
                                      bool isHeld);

} // namespace farview
