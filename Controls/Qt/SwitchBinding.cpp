#include "Controls/Qt/SwitchBinding.h"

#include "Controls/Qt/SwitchWidget.h"

namespace farview
{

SwitchBinding::SwitchBinding(std::shared_ptr<QLNOnOffView> view, SwitchWidget* widget)
    : Binding(view, widget), mOnOff(std::move(view)), mSwitch(widget)
{
    connect(widget, &SwitchWidget::movedTo, this, [this](bool on) {
        userDid([this, on] {
            const auto slider = mOnOff->slider();
            on ? slider->moveRight(nullptr) : slider->moveLeft(nullptr);
        });
    });
}

void SwitchBinding::adopt()
{
    if (mSwitch->testAttribute(Qt::WA_ForceDisabled))
        mOnOff->setEnabled(false);
    mSliderSubscription = mOnOff->slider()->observe([this](Change change) { refresh(change); });
}

void SwitchBinding::show(Change /*change*/)
{
    mSwitch->setEnabled(mOnOff->isEnabled());
    mSwitch->setPosition(mOnOff->slider()->doubleValue());
    mSwitch->setOn(mOnOff->slider()->onOffValue() == 1.0);
}

} // namespace farview
