#pragma once

#include "Controls/Control.h"
#include "Controls/OperationTable.h"
#include "Controls/Switch/Animator.h"
#include "Controls/Switch/QLNOnOffCell.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

/// The two-position slider inside the switch: off at 0.0, on at 1.0. Sends its action when the user
/// has moved it, with itself as the sender.
class QLNOnOff : public farview::Control, public farview::Responder
{
public:
    /// The position the switch is at or is moving to. Not 0 or 1 only while someone set it so.
    double onOffValue() const { return mOnOffValue; }
    /// Where the knob is drawn.
    double doubleValue() const { return mDoubleValue; }
    /// Puts the knob there, between `minValue` and `maxValue`, and ends a movement.
    void setDoubleValue(double value);
    /// Moves the knob. The destination is known at once, also while the knob is still on its way.
    void setDoubleValue(double value, bool animate);
    /// To the other end, on its way: on from exactly off, off from anywhere else.
    void toggle();

    double minValue() const { return mMinValue; }
    void setMinValue(double value) { mMinValue = value; }
    double maxValue() const { return mMaxValue; }
    void setMaxValue(double value) { mMaxValue = value; }
    /// Changes nothing: the action is sent when the user lets go, never while the knob is dragged.
    bool isContinuous() const { return mContinuous; }
    void setContinuous(bool continuous) { mContinuous = continuous; }
    /// Whether y grows downward in this view. It grows upward.
    bool isFlipped() const { return false; }
    farview::Rect bounds() const { return {{}, frame().size}; }

    /// Whether the knob is not where it belongs: it moves, is dragged, or a value is no number.
    bool animating() const { return mOnOffValue != mDoubleValue; }
    /// What `animating` depends on. Observers are told whenever one of them changes.
    static std::vector<std::string_view> keyPathsForValuesAffectingAnimating();
    /// The knob moves as views do. None for what cannot be played.
    static std::optional<farview::Animation> defaultAnimationForKey(std::string_view key);
    /// Who plays movements; without one the knob is there at once.
    void setAnimator(std::shared_ptr<farview::Animator> animator);

    const std::shared_ptr<QLNOnOffCell>& cell() const { return mCell; }
    void setCell(std::shared_ptr<QLNOnOffCell> cell);

    /// What the arrow keys do: move to that end and send the action, even when it was there
    /// already. A disabled slider ignores them.
    void moveRight(farview::Object* sender);
    void moveLeft(farview::Object* sender);
    /// What a click does, by whatever means: it is refused while the slider is disabled or moves.
    void performClick(farview::Object* sender);

    /// A press, wherever in the view's own coordinates. False when it is refused; what follows is
    /// ignored then.
    bool mouseDown(farview::Point point);
    void mouseDragged(farview::Point point);
    void mouseUp(farview::Point point);
    /// Something came between press and release: the knob goes back, and nothing is sent.
    void cancelTracking();
    bool isTracking() const { return mTracking; }

    bool respondsTo(farview::Selector selector) const override;
    bool perform(farview::Selector selector, farview::Object* argument) override;

private:
    static const farview::Operation<QLNOnOff>* operation(farview::Selector selector);
    double limited(double value) const;
    void stopMoving();
    void show(double onOffValue, double doubleValue);
    void moveTo(double value);

    double mOnOffValue = 0.0;
    double mDoubleValue = 0.0;
    double mMinValue = 0.0;
    double mMaxValue = 1.0;
    bool mContinuous = false;
    bool mTracking = false;
    farview::Point mLastPoint;
    std::shared_ptr<farview::Animator> mAnimator;
    std::shared_ptr<QLNOnOffCell> mCell;
};
