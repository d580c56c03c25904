#include "Controls/ScreenMap.h"

namespace farview
{

void ScreenMap::setScreens(PixelRect monitor, std::vector<PixelRect> screens)
{
    update(mMonitor, monitor);
    update(mScreens, std::move(screens));
}

void ScreenMap::userChose(ScreenSide side)
{
    if (!isEnabled() || mScreens.empty())
        return;
    const ScreenSide now = sideOf(mMonitor, mScreens.front());
    if (side != now)
        mEarlierSides.push_back(now);
    choose(side);
}

void ScreenMap::userTookBack()
{
    if (!isEnabled() || mEarlierSides.empty())
        return;
    const ScreenSide side = mEarlierSides.back();
    mEarlierSides.pop_back();
    choose(side);
}

void ScreenMap::choose(ScreenSide side)
{
    mChosenSide = side;
    sendAction();
}

} // namespace farview
