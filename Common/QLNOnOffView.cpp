#include "Common/QLNOnOffView.h"

void QLNOnOff::setDoubleValue(double value, bool /*animate*/)
{
    if (mOnOffValue == value && mDoubleValue == value)
        return;
    mOnOffValue = value;
    mDoubleValue = value;
    changed(farview::Change::properties);
}

void QLNOnOff::moveRight(farview::Object* /*sender*/) { moveTo(1.0); }
void QLNOnOff::moveLeft(farview::Object* /*sender*/) { moveTo(0.0); }

void QLNOnOff::moveTo(double value)
{
    if (!isEnabled())
        return;
    setDoubleValue(value, true);
    sendAction();
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
