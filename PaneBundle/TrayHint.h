#pragma once

#include "Controls/Control.h"
#include "Platform/Desktop/BusNameWatcher.h"

#include <memory>
#include <string>

namespace farview
{

/// Lets the check box for the status icon say in its tool tip when this desktop has no tray. Main
/// thread only.
class TrayHint
{
public:
    /// `bus` must outlive this.
    TrayHint(SessionBus& bus, std::weak_ptr<Button> checkBox, std::string text);

private:
    std::weak_ptr<Button> mCheckBox;
    std::string mText;
    BusNameWatcher mWatcher;
};

} // namespace farview
