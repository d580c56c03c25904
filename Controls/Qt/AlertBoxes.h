#pragma once

#include "Controls/Alert.h"

namespace farview
{

/// Alerts as the toolkit's message boxes. Main thread only.
class AlertBoxes final : public AlertPresenter
{
public:
    Subscription beginSheet(const Alert& alert, const std::shared_ptr<View>& view,
                            DidEnd didEnd) override;
};

} // namespace farview
