#include "Screen/PointerMapping.h"

#include <algorithm>
#include <cmath>

namespace farview
{
namespace
{

constexpr double parts = LinkPlace::partsOfPixel;

bool isWithin(double value, double size) { return value >= 0 && value < size; }

/// From a drawn picture's share to 256ths of its pixels.
std::uint32_t wirePart(double share, int pixels)
{
    const double most = pixels * parts - 1;
    return static_cast<std::uint32_t>(std::clamp(std::floor(share * pixels * parts), 0.0, most));
}

} // namespace

std::optional<MappedPlace> mappedPlace(const LinkPlace& place, const MonitorPlace& monitor)
{
    if (place.width != monitor.width || place.height != monitor.height)
        return std::nullopt;
    const double x = place.x / parts;
    const double y = place.y / parts;
    if (!isWithin(x, monitor.width) || !isWithin(y, monitor.height))
        return std::nullopt;
    const auto& area = monitor.area;
    return MappedPlace{x, y, area.x + x * area.width / monitor.width,
                       area.y + y * area.height / monitor.height};
}

std::optional<LinkPlace> picturePlace(double glassX, double glassY, const PictureOnGlass& picture,
                                      bool isHeld)
{
    const double x = glassX - picture.left;
    const double y = glassY - picture.top;
    if (!isHeld && (!isWithin(x, picture.width) || !isWithin(y, picture.height)))
        return std::nullopt;
    return LinkPlace{wirePart(x / picture.width, picture.pictureWidth),
                     wirePart(y / picture.height, picture.pictureHeight),
                     static_cast<std::uint16_t>(picture.pictureWidth),
                     static_cast<std::uint16_t>(picture.pictureHeight)};
}

} // namespace farview
