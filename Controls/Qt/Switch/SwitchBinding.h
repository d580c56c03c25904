#pragma once

#include "Controls/Qt/Binding.h"
#include "Controls/Switch/QLNOnOffView.h"

namespace farview
{

class SwitchWidget;

/// The on/off switch. The widget hands the user's moves to the slider itself.
class SwitchBinding : public Binding
{
    Q_OBJECT

public:
    SwitchBinding(std::shared_ptr<QLNOnOffView> view, SwitchWidget* widget);
    ~SwitchBinding() override;

protected:
    void adopt() override;
    void show(Change change) override;

private:
    std::shared_ptr<QLNOnOffView> mOnOff;
    SwitchWidget* mSwitch;
    Subscription mSliderSubscription;
};

} // namespace farview
