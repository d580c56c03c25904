#pragma once

#include "Common/QLNOnOffView.h"
#include "Controls/Qt/Binding.h"

namespace farview
{

class SwitchWidget;

/// The on/off switch. The user's moves go to its slider, as the arrow keys' do.
class SwitchBinding : public Binding
{
    Q_OBJECT

public:
    SwitchBinding(std::shared_ptr<QLNOnOffView> view, SwitchWidget* widget);

protected:
    void adopt() override;
    void show(Change change) override;

private:
    std::shared_ptr<QLNOnOffView> mOnOff;
    SwitchWidget* mSwitch;
    Subscription mSliderSubscription;
};

} // namespace farview
