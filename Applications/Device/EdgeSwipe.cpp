#include "Applications/Device/EdgeSwipe.h"

#include <cmath>

namespace farview
{
namespace
{

// In points.
constexpr double edge = 8;
constexpr double swipeLength = 32;
/// A finger that rests moves less.
constexpr double restlessness = 8;

} // namespace

EdgeSwipe::Verdict EdgeSwipe::take(const QTouchEvent& event)
{
    if (event.type() == QEvent::TouchBegin)
        return begin(event);
    if (event.type() == QEvent::TouchCancel)
        mBegin.reset();
    if (mIsSwipe)
        return Verdict::keepBack;
    if (!mBegin)
        return Verdict::passOn;
    const QPointF moved = event.points().front().position() - mPlace;
    const bool goesDown =
        moved.y() >= std::abs(moved.x()) || moved.manhattanLength() < restlessness;
    if (event.pointCount() != 1 || !goesDown || event.isEndEvent())
        return Verdict::passOn;
    mIsSwipe = moved.y() >= swipeLength;
    if (!mIsSwipe)
        return Verdict::keepBack;
    mBegin.reset();
    return Verdict::isSwipe;
}

EdgeSwipe::Verdict EdgeSwipe::begin(const QTouchEvent& event)
{
    mIsSwipe = false;
    mBegin.reset();
    mPlace = event.points().front().position();
    if (event.pointCount() != 1 || mPlace.y() >= edge)
        return Verdict::passOn;
    mBegin.reset(event.clone());
    return Verdict::keepBack;
}

} // namespace farview
