#pragma once

#include "Platform/Types/Rect.h"

#include <string>

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
};

} // namespace farview

// Geometry as text for logs. Numbers have at most six digits and a point, whatever the user's
// language does to numbers.

/// "{ 1.5, 2 }"
std::string NSStringFromCGPoint(const farview::Point& point);
/// "{ 1.5, 2 }", width first.
std::string NSStringFromCGSize(const farview::Size& size);
/// "{ { 0, 0 }, { 1.5, 2 } }", the origin first.
std::string NSStringFromCGRect(const farview::Rect& rect);
/// "a=1 b=0 c=0 d=1 tx=0 ty=0"
std::string NSStringFromCGAffineTransform(const farview::AffineTransform& transform);

/// How far the points lie apart, to the precision of a float.
float CGPointDistance(const farview::Point& p1, const farview::Point& p2);
/// Whether they lie at most `distance` apart.
bool CGPointProximateWithin(const farview::Point& p1, const farview::Point& p2, double distance);
