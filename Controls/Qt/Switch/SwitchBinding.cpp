#include "Controls/Qt/Switch/SwitchBinding.h"

#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Controls/Qt/Switch/WidgetAnimator.h"

namespace farview
{

SwitchBinding::SwitchBinding(std::shared_ptr<QLNOnOffView> view, SwitchWidget* widget)
    : Binding(view, widget), mOnOff(std::move(view)), mSwitch(widget)
{
}

SwitchBinding::~SwitchBinding()
{
    // The switch may outlive its window, and the pictures' bundle.
    mOnOff->slider()->setAnimator(nullptr);
    mOnOff->setImageSource({});
}

void SwitchBinding::adopt()
{
    if (mSwitch->testAttribute(Qt::WA_ForceDisabled))
        mOnOff->setEnabled(false);
    mOnOff->setImageSource(mSwitch->imageSource());
    mOnOff->initWithFrame({{double(mSwitch->x()), double(mSwitch->y())}, {}});
    mOnOff->slider()->setAnimator(std::make_shared<WidgetAnimator>(mSwitch));
    mSwitch->setSlider(mOnOff->slider());
    mSliderSubscription = mOnOff->slider()->observe([this](Change change) { refresh(change); });
}

void SwitchBinding::show(Change /*change*/)
{
    mSwitch->setEnabled(mOnOff->isEnabled());
    mSwitch->refresh();
}

} // namespace farview
