#pragma once

#include "Controls/Switch/QLNOnOff.h"

#include <memory>
#include <utility>

/// The switch of the pane: wraps the slider and hands on what concerns it. Whatever it is asked by
/// name and does not know itself, the slider is asked.
class QLNOnOffView : public farview::View, public farview::Responder
{
public:
    /// The slider is there from the beginning; `initWithFrame` gives it its place.
    QLNOnOffView();

    /// Where the pictures come from. Set before `initWithFrame`.
    void setImageSource(QLNImageSource source);
    /// The view goes where the frame begins; it is as large as the picture "OverlayMask", whatever
    /// the frame's own size, and off. Called once.
    void initWithFrame(const farview::Rect& frame);

    std::shared_ptr<QLNOnOff> slider() const { return mOnOffSlider; }
    /// Whether it is composed apart before it comes onto the window.
    bool wantsLayer() const { return mWantsLayer; }
    void setWantsLayer(bool wants) { mWantsLayer = wants; }

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

    bool respondsTo(farview::Selector selector) const override;
    bool perform(farview::Selector selector, farview::Object* argument) override;

private:
    std::shared_ptr<QLNOnOff> mOnOffSlider;
    bool mWantsLayer = false;
};
