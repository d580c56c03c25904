#pragma once

namespace farview
{

/// (x, y) becomes (a x + c y + tx, b x + d y + ty). Starts as the transform that changes nothing.
struct AffineTransform {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double tx = 0;
    double ty = 0;

    bool operator==(const AffineTransform&) const = default;
};

} // namespace farview
