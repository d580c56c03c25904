#pragma once

#include "Link/Wire/LinkFrame.h"

#include <QPoint>
#include <QRect>
#include <QSize>

namespace farview
{

/// Where a picture lies on a glass. All of it in pixels of the screen.
struct PicturePlace {
    QRect area; ///< of the whole picture; may reach outside the glass
    QSize picture;

    bool isScaled() const { return area.size() != picture; }
    /// A part of the picture, as it lies on the glass.
    QRectF onGlass(const QRect& part) const;
    /// All pixels of the glass that a part of the picture has to do with.
    QRect touched(const QRect& part) const;
};

/// Fitted: as large as the glass allows, in its proportions, in the middle. Else pixel for pixel:
/// in the middle, and where the glass is smaller, the part around the pointer.
PicturePlace placedPicture(const QSize& glass, const QSize& picture, bool isFitted,
                           const QPoint& pointer);

/// The pixels to a point of a screen that has so many of both, in the 120ths that Wayland counts
/// in; `rounded`, which is that rounded up, where the sizes say something else.
double exactRatio(const QSize& pixels, const QSize& points, double rounded);

/// What a host is told of a screen: its size in points as it is held, its pixels to a point, and
/// how many pictures a second it shows.
LinkDeviceScreen screenToTell(const QSize& points, double ratio, double refresh);

} // namespace farview
