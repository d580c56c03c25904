#include "Controls/Switch/QLNOnOffView.h"

QLNOnOffView::QLNOnOffView() : mOnOffSlider(std::make_shared<QLNOnOff>())
{
    mOnOffSlider->setCell(std::make_shared<QLNOnOffCell>());
}

void QLNOnOffView::setImageSource(QLNImageSource source)
{
    mOnOffSlider->cell()->setImageSource(std::move(source));
}

void QLNOnOffView::initWithFrame(const farview::Rect& frame)
{
    const auto overlay = bundleImageNamed(mOnOffSlider->cell()->imageSource(), "OverlayMask");
    setFrame({frame.origin, overlay ? overlay->size() : farview::Size{}}, false);
    mOnOffSlider->setFrame({{}, this->frame().size}, false);
    mOnOffSlider->setMinValue(0.0);
    mOnOffSlider->setMaxValue(1.0);
    mOnOffSlider->setDoubleValue(0.0, false);
    mOnOffSlider->setContinuous(false);
    setWantsLayer(true);
}

int QLNOnOffView::state() const
{
    const double value = mOnOffSlider->onOffValue();
    if (value == 1.0)
        return 1;
    return value == 0.0 ? 0 : -1;
}

void QLNOnOffView::setState(int state) { setState(state, true); }

void QLNOnOffView::setState(int state, bool animate)
{
    const double target = state == 1 ? 1.0 : 0.0;
    if (mOnOffSlider->onOffValue() != target)
        mOnOffSlider->setDoubleValue(target, animate);
}

bool QLNOnOffView::respondsTo(farview::Selector selector) const
{
    return mOnOffSlider->respondsTo(selector);
}

bool QLNOnOffView::perform(farview::Selector selector, farview::Object* argument)
{
    return mOnOffSlider->perform(selector, argument);
}
