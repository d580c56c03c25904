#pragma once

#include "Applications/FarviewStatusItem/ClassicTray.h"
#include "Applications/FarviewStatusItem/StatusNotifierItem.h"
#include "Platform/Desktop/Looks/TrayWatcher.h"
#include "Platform/Log.h"

#include <functional>
#include <optional>

namespace farview
{

/// Shows the status item in the desktop's tray, whichever there is and whenever it comes: over the
/// bus where somebody shows items of the StatusNotifierItem kind, else in a classic tray. While
/// there is none it waits, and says so once in the log. Main thread only.
class Tray
{
public:
    /// The references must outlive this.
    Tray(SessionBus& bus, Log& log, std::function<void()> activated);

    void show(const StatusItemDisplay& display);

private:
    void busTrayChanged(BusTray tray);
    void useClassicTray();

    Log& mLog;
    StatusItemDisplay mDisplay;
    StatusNotifierItem mItem;
    std::optional<ClassicTray> mClassic;
    BusTray mBusTray = BusTray::none;
    TrayWatcher mWatcher;
    bool mHasSaidNone = false;
};

} // namespace farview
