#pragma once

#include "Controls/Control.h"

#include <memory>
#include <utility>

/// The two-position slider inside the switch. Its value runs from 0.0 (off) to 1.0 (on).
class QLNOnOff : public farview::Control
{
public:
    /// The position the switch is at or is moving to. Not 0 or 1 only while someone set it so.
    double onOffValue() const { return mOnOffValue; }
    /// Where the knob is drawn.
    double doubleValue() const { return mDoubleValue; }
    /// Moves the knob. The destination is known at once, also while the knob is still on its way.
    void setDoubleValue(double value, bool animate);

    /// What the arrow keys do: move to that end and send the action, even when it was there
    /// already. A disabled slider ignores them.
    void moveRight(farview::Object* sender);
    void moveLeft(farview::Object* sender);

private:
    void moveTo(double value);

    double mOnOffValue = 0.0;
    double mDoubleValue = 0.0;
};

/// The switch of the pane: wraps the slider and hands on what concerns it.
class QLNOnOffView : public farview::View
{
public:
    QLNOnOffView() : mOnOffSlider(std::make_shared<QLNOnOff>()) {}

    std::shared_ptr<QLNOnOff> slider() const { return mOnOffSlider; }

    /// 1 on, 0 off, -1 in between.
    int state() const;
    /// 1 is on, whatever else is off. Moves with an animation.
    void setState(int state);
    void setState(int state, bool animate);

    bool isEnabled() const { return mOnOffSlider->isEnabled(); }
    void setEnabled(bool enabled) { mOnOffSlider->setEnabled(enabled); }
    std::weak_ptr<farview::Responder> target() const { return mOnOffSlider->target(); }
    void setTarget(std::weak_ptr<farview::Responder> target)
    {
        mOnOffSlider->setTarget(std::move(target));
    }
    farview::Selector action() const { return mOnOffSlider->action(); }
    void setAction(farview::Selector action) { mOnOffSlider->setAction(action); }

private:
    std::shared_ptr<QLNOnOff> mOnOffSlider;
};
