#include "Common/CGGeometry_Additions.h"

#include <array>
#include <charconv>
#include <cmath>

namespace
{

/// As "%g", which would ask the process's locale for its decimal point.
std::string number(double value)
{
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 6);
    return {text.data(), end.ptr};
}

std::string pair(const std::string& first, const std::string& second)
{
    return "{ " + first + ", " + second + " }";
}

float span(double from, double to) { return std::fabs(static_cast<float>(to - from)); }

} // namespace

std::string NSStringFromCGPoint(const farview::Point& point)
{
    return pair(number(point.x), number(point.y));
}

std::string NSStringFromCGSize(const farview::Size& size)
{
    return pair(number(size.width), number(size.height));
}

std::string NSStringFromCGRect(const farview::Rect& rect)
{
    return pair(NSStringFromCGPoint(rect.origin), NSStringFromCGSize(rect.size));
}

std::string NSStringFromCGAffineTransform(const farview::AffineTransform& transform)
{
    return "a=" + number(transform.a) + " b=" + number(transform.b) + " c=" + number(transform.c) +
           " d=" + number(transform.d) + " tx=" + number(transform.tx) +
           " ty=" + number(transform.ty);
}

float CGPointDistance(const farview::Point& p1, const farview::Point& p2)
{
    const double dx = span(p1.x, p2.x);
    const double dy = span(p1.y, p2.y);
    return std::sqrt(static_cast<float>(dx * dx + dy * dy));
}

bool CGPointProximateWithin(const farview::Point& p1, const farview::Point& p2, double distance)
{
    return distance >= CGPointDistance(p1, p2);
}
