#pragma once

namespace farview
{

/// Geometry in points; y grows downward in the window's frames.
struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

struct Rect {
    Point origin;
    Size size;

    bool operator==(const Rect&) const = default;
};

} // namespace farview
