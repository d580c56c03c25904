#include "Controls/Switch/QLNOnOffCell.h"

#include "Controls/Switch/QLNOnOff.h"

#include <cmath>

using farview::CompositingOperation;
using farview::Point;
using farview::Rect;
using farview::Size;

namespace
{

constexpr double knobTravelSlack = 4.0;
constexpr double knobOffset = -2.0;
constexpr double wellOffset = 1.0;
constexpr float dragThreshold = 0.2F;
constexpr double disabledKnobOpacity = 0.5;
constexpr float disabledWellOpacity = 0.3F;

bool contains(const Rect& rect, Point point)
{
    return point.x >= rect.origin.x && point.x < rect.origin.x + rect.size.width &&
           point.y >= rect.origin.y && point.y < rect.origin.y + rect.size.height;
}

/// The smallest rectangle in whole points around it.
Rect integral(const Rect& rect)
{
    const Point origin{std::floor(rect.origin.x), std::floor(rect.origin.y)};
    return {origin,
            {std::ceil(rect.origin.x + rect.size.width) - origin.x,
             std::ceil(rect.origin.y + rect.size.height) - origin.y}};
}

/// 0 also where the value, or an end, is no number.
double fractionOf(const QLNOnOff& slider)
{
    if (slider.minValue() >= slider.maxValue())
        return 0.0;
    const double fraction =
        (slider.doubleValue() - slider.minValue()) / (slider.maxValue() - slider.minValue());
    return std::isnan(fraction) ? 0.0 : fraction;
}

bool isTooShort(double distance)
{
    return distance < 0 ? distance > -double(dragThreshold) : distance < double(dragThreshold);
}

} // namespace

bool QLNOnOffCell::startTrackingAt(Point startPoint, QLNOnOff& controlView)
{
    if (controlView.animating())
        return false;
    if (!contains(knobRectFlipped(controlView.isFlipped()), startPoint)) {
        mState = pressedOnTrack;
        return true;
    }
    mState = pressedOnKnob;
    mPressed = true;
    mGrabbedAt = startPoint.x;
    mGrabbedValue = controlView.doubleValue();
    return true;
}

bool QLNOnOffCell::continueTracking(Point lastPoint, Point currentPoint, QLNOnOff& controlView)
{
    if (mState == pressedOnKnob && currentPoint != lastPoint && lastPoint != Point{})
        mState = dragged;
    if (mState == pressedOnTrack)
        return true;
    const double travel = knobTravel();
    if (travel > 0) {
        const double range = controlView.maxValue() - controlView.minValue();
        controlView.setDoubleValue(mGrabbedValue + range * (currentPoint.x - mGrabbedAt) / travel);
    }
    return true;
}

void QLNOnOffCell::stopTracking(Point /*lastPoint*/, Point /*stopPoint*/, QLNOnOff& controlView,
                                bool /*mouseIsUp*/)
{
    mPressed = false;
    const double on = controlView.onOffValue();
    if (mState == dragged && isTooShort(on - controlView.doubleValue()))
        controlView.setDoubleValue(on, true);
    else if (mState == pressedOnKnob || mState == dragged || mState == pressedOnTrack)
        controlView.toggle();
}

Size QLNOnOffCell::imageSize(const char* name) const
{
    const auto image = bundleImageNamed(mImageSource, name);
    return image ? image->size() : Size{};
}

double QLNOnOffCell::knobTravel() const
{
    return mControlView
               ? mControlView->bounds().size.width - imageSize("SliderKnob").width + knobTravelSlack
               : 0.0;
}

Rect QLNOnOffCell::knobRectFlipped(bool /*flipped*/) const
{
    if (!mControlView)
        return {};
    const Rect track = mControlView->bounds();
    const double x = std::floor(knobTravel() * fractionOf(*mControlView)) + knobOffset;
    return integral({{x + track.origin.x, track.origin.y + knobOffset}, imageSize("SliderKnob")});
}

void QLNOnOffCell::composite(const char* name, Point point, CompositingOperation operation,
                             double fraction, farview::Canvas& canvas) const
{
    if (const auto image = bundleImageNamed(mImageSource, name))
        canvas.compositeToPoint(*image, point, operation, fraction);
}

void QLNOnOffCell::drawWell(Point point, bool enabled, farview::Canvas& canvas) const
{
    if (enabled) {
        composite("SliderWell", point, CompositingOperation::copy, 1.0, canvas);
        return;
    }
    composite("SliderWell", point, CompositingOperation::plusLighter, 1.0, canvas);
    composite("SliderWell", point, CompositingOperation::sourceOver, disabledWellOpacity, canvas);
}

void QLNOnOffCell::drawWithFrame(const Rect& cellFrame, const QLNOnOff& controlView,
                                 farview::Canvas& canvas) const
{
    const Point origin = cellFrame.origin;
    drawWell({origin.x, origin.y + wellOffset}, controlView.isEnabled(), canvas);
    const auto drawOverlay = [&] {
        composite("OverlayMask", origin, CompositingOperation::sourceOver, 1.0, canvas);
    };
    const auto drawInterior = [&] { drawKnob(knobRectFlipped(controlView.isFlipped()), canvas); };
    if (mShowsFirstResponder && mFocusRingType != FocusRingType::none) {
        drawOverlay();
        drawInterior();
    } else {
        drawInterior();
        drawOverlay();
    }
}

void QLNOnOffCell::drawKnob(const Rect& knobRect, farview::Canvas& canvas) const
{
    const bool enabled = mControlView && mControlView->isEnabled();
    composite(mPressed ? "SliderKnobDown" : "SliderKnob", knobRect.origin,
              CompositingOperation::sourceOver, enabled ? 1.0 : disabledKnobOpacity, canvas);
}
