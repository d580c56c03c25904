#include "Applications/FarviewStatusItem/Tray.h"

#include <utility>

namespace farview
{

Tray::Tray(SessionBus& bus, Log& log, std::function<void()> activated)
    : mLog(log), mItem(bus, std::move(activated)),
      mWatcher(bus, [this](BusTray tray) { busTrayChanged(tray); })
{
}

void Tray::show(const StatusItemDisplay& display)
{
    mDisplay = display;
    mItem.show(display);
    if (mClassic)
        mClassic->show(display);
}

void Tray::busTrayChanged(BusTray tray)
{
    const bool wasListed = std::exchange(mBusTray, tray) != BusTray::none;
    if (tray != BusTray::none && !wasListed)
        mItem.registerWithWatcher();
    if (tray == BusTray::shown)
        mClassic.reset();
    else
        useClassicTray();
}

void Tray::useClassicTray()
{
    if (!mClassic && ClassicTray::isPossible())
        mClassic.emplace(mDisplay);
    if (!ClassicTray::isThere() && !std::exchange(mHasSaidNone, true))
        mLog.write(LogLevel::info, "This desktop has no tray; waiting for one");
}

} // namespace farview
