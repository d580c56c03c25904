#pragma once

#include "Controls/Control.h"
#include "Platform/Desktop/Looks/TrayWatcher.h"

#include <memory>
#include <string>

namespace farview
{

/// Lets the check box for the status icon say in its tool tip when nothing on this desktop shows
/// status icons. Main thread only.
class TrayHint
{
public:
    /// `bus` must outlive this.
    TrayHint(SessionBus& bus, std::weak_ptr<Button> checkBox, std::string text);

    /// Looks again for a classic tray, which does not tell when it comes or goes.
    void refresh();

private:
    std::weak_ptr<Button> mCheckBox;
    std::string mText;
    BusTray mBusTray = BusTray::shown; // until it is known, nothing is claimed
    TrayWatcher mWatcher;
};

} // namespace farview
