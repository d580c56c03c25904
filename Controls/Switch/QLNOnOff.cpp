#include "Controls/Switch/QLNOnOff.h"

#include <algorithm>
#include <cmath>
#include <utility>

using farview::Duration;
using farview::Object;
using farview::Operation;
using farview::Point;
using farview::Selector;

namespace
{

constexpr double animationTimeFactor = 0.2; // seconds from end to end

} // namespace

void QLNOnOff::setDoubleValue(double value)
{
    stopMoving();
    show(mOnOffValue, limited(value));
}

void QLNOnOff::setDoubleValue(double value, bool animate)
{
    const Duration duration(animationTimeFactor * std::abs(value - mDoubleValue));
    // A way to or from what is no number takes no time.
    const bool hasWay = duration.count() > 0 && std::isfinite(duration.count());
    if (!animate || !mAnimator || !hasWay) {
        stopMoving();
        show(value, limited(value));
        return;
    }
    show(value, mDoubleValue);
    mAnimator->play(mDoubleValue, value, duration, *defaultAnimationForKey("doubleValue"),
                    [this, self = weak_from_this()](double played) {
                        if (const auto alive = self.lock())
                            show(mOnOffValue, limited(played));
                    });
}

double QLNOnOff::limited(double value) const
{
    return std::clamp(value, mMinValue, std::max(mMinValue, mMaxValue));
}

void QLNOnOff::stopMoving()
{
    if (mAnimator)
        mAnimator->stop();
}

void QLNOnOff::show(double onOffValue, double doubleValue)
{
    const bool same = mOnOffValue == onOffValue && mDoubleValue == doubleValue;
    mOnOffValue = onOffValue;
    mDoubleValue = doubleValue;
    if (!same)
        changed(farview::Change::properties);
}

void QLNOnOff::toggle() { setDoubleValue(mOnOffValue == 0.0 ? 1.0 : 0.0, true); }

std::vector<std::string_view> QLNOnOff::keyPathsForValuesAffectingAnimating()
{
    return {"doubleValue", "onOffValue"};
}

std::optional<farview::Animation> QLNOnOff::defaultAnimationForKey(std::string_view key)
{
    return Control::defaultAnimationForKey(key == "doubleValue" ? "frameOrigin" : key);
}

void QLNOnOff::setAnimator(std::shared_ptr<farview::Animator> animator)
{
    mAnimator = std::move(animator);
}

void QLNOnOff::setCell(std::shared_ptr<QLNOnOffCell> cell)
{
    mCell = std::move(cell);
    if (mCell)
        mCell->setControlView(this);
}

void QLNOnOff::moveRight(Object* /*sender*/) { moveTo(1.0); }
void QLNOnOff::moveLeft(Object* /*sender*/) { moveTo(0.0); }

void QLNOnOff::moveTo(double value)
{
    if (!isEnabled())
        return;
    setDoubleValue(value, true);
    sendAction();
}

void QLNOnOff::performClick(Object* /*sender*/)
{
    if (!isEnabled() || animating())
        return;
    toggle();
    sendAction();
}

bool QLNOnOff::mouseDown(Point point)
{
    mLastPoint = point;
    mTracking = isEnabled() && mCell && mCell->startTrackingAt(point, *this);
    return mTracking;
}

void QLNOnOff::mouseDragged(Point point)
{
    if (!mTracking)
        return;
    const Point last = std::exchange(mLastPoint, point);
    mTracking = mCell->continueTracking(last, point, *this);
}

void QLNOnOff::mouseUp(Point point)
{
    if (!std::exchange(mTracking, false))
        return;
    mCell->stopTracking(mLastPoint, point, *this, true);
    sendAction();
}

void QLNOnOff::cancelTracking()
{
    if (!std::exchange(mTracking, false))
        return;
    mCell->cancelTracking();
    setDoubleValue(mOnOffValue, true);
}

const Operation<QLNOnOff>* QLNOnOff::operation(Selector selector)
{
    static constexpr Operation<QLNOnOff> operations[] = {
        farview::action<&QLNOnOff::moveLeft, QLNOnOff>("moveLeft:"),
        farview::action<&QLNOnOff::moveRight, QLNOnOff>("moveRight:"),
        farview::action<&QLNOnOff::performClick, QLNOnOff>("performClick:"),
    };
    return farview::findOperation(std::span<const Operation<QLNOnOff>>(operations), selector);
}

bool QLNOnOff::respondsTo(Selector selector) const { return operation(selector) != nullptr; }

bool QLNOnOff::perform(Selector selector, Object* argument)
{
    const auto* found = operation(selector);
    if (found)
        found->call(*this, argument);
    return found != nullptr;
}
