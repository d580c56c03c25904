#pragma once

#include "Platform/Desktop/Screens/KWin/KWinVirtualScreens.h"
#include "Platform/Desktop/Screens/Mutter/MutterVirtualScreens.h"
#include "Platform/Desktop/Screens/Portal/PortalVirtualScreens.h"
#include "Platform/Desktop/Screens/ScreenBackends.h"
#include "Platform/Desktop/Screens/Wlroots/WlrootsVirtualScreens.h"
#include "Platform/Desktop/Screens/X11/X11VirtualScreens.h"

#include <string>
#include <utility>

namespace farview
{

/// The monitors of the desktop on which this program runs, whichever it is. Main thread only; loop
/// and bus must live longer.
class DesktopScreens
{
public:
    /// `watcher`: the path of the program that undoes a monitor of an X server when this process
    /// has died. Where a portal asks the user, `memory` saves the same question next time.
    DesktopScreens(RunLoop& loop, SessionBus& bus, std::string watcher, PortalMemory memory = {})
        : mX11(loop, std::move(watcher)), mMutter(loop, bus), mWlroots(loop), mKWin(loop, bus),
          mPortal(loop, bus, std::move(memory)), mBackends(bus, sessionFacts(),
                                                           {{ScreenBackend::x11, &mX11},
                                                            {ScreenBackend::mutter, &mMutter},
                                                            {ScreenBackend::wlroots, &mWlroots},
                                                            {ScreenBackend::kwin, &mKWin},
                                                            {ScreenBackend::portal, &mPortal}})
    {
    }

    VirtualScreens& screens() { return mBackends; }

private:
    X11VirtualScreens mX11;
    MutterVirtualScreens mMutter;
    WlrootsVirtualScreens mWlroots;
    KWinVirtualScreens mKWin;
    PortalVirtualScreens mPortal;
    ScreenBackends mBackends;
};

} // namespace farview
