#include "Applications/Device/GlassGeometry.h"

#include <algorithm>
#include <cmath>

namespace farview
{
namespace
{

/// Where a line of pixels begins: in the middle, or so that the pointer is seen.
int unscaledStart(int glass, int picture, int pointer)
{
    return picture <= glass ? (glass - picture) / 2
                            : std::clamp(glass / 2 - pointer, glass - picture, 0);
}

std::uint16_t within(double value, int least, int most)
{
    const double bounded =
        std::isfinite(value) ? std::clamp(value, 1.0 * least, 1.0 * most) : least;
    return static_cast<std::uint16_t>(std::lround(bounded));
}

} // namespace

QRectF PicturePlace::onGlass(const QRect& part) const
{
    const double horizontal = 1.0 * area.width() / picture.width();
    const double vertical = 1.0 * area.height() / picture.height();
    return {area.x() + part.x() * horizontal, area.y() + part.y() * vertical,
            part.width() * horizontal, part.height() * vertical};
}

QRect PicturePlace::touched(const QRect& part) const
{
    // A smooth picture mixes each pixel with its neighbours.
    const QRect mixed = isScaled() ? part.adjusted(-1, -1, 1, 1) : part;
    return onGlass(mixed).toAlignedRect() & area;
}

PicturePlace placedPicture(const QSize& glass, const QSize& picture, bool isFitted,
                           const QPoint& pointer)
{
    if (!isFitted)
        return {{unscaledStart(glass.width(), picture.width(), pointer.x()),
                 unscaledStart(glass.height(), picture.height(), pointer.y()), picture.width(),
                 picture.height()},
                picture};
    const QSize size = picture.scaled(glass, Qt::KeepAspectRatio).expandedTo({1, 1});
    return {{{(glass.width() - size.width()) / 2, (glass.height() - size.height()) / 2}, size},
            picture};
}

double exactRatio(const QSize& pixels, const QSize& points, double rounded)
{
    constexpr double steps = 120;
    if (pixels.isEmpty() || points.isEmpty())
        return rounded;
    // The longer side says it best: points are cut off to whole ones.
    const bool isWide = points.width() > points.height();
    const double ratio =
        isWide ? 1.0 * pixels.width() / points.width() : 1.0 * pixels.height() / points.height();
    const double exact = std::round(ratio * steps) / steps;
    return std::ceil(exact) == rounded ? exact : rounded;
}

LinkDeviceScreen screenToTell(const QSize& points, double ratio, double refresh)
{
    return {within(points.width() * ratio, 1, kLargestPictureSide),
            within(points.height() * ratio, 1, kLargestPictureSide), within(100 * ratio, 50, 800),
            within(refresh, 1, 1000)};
}

} // namespace farview
