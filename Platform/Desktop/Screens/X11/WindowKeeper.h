#pragma once

#include "Platform/Desktop/Screens/X11/DesktopWindows.h"

#include <chrono>
#include <functional>
#include <map>
#include <set>

namespace farview
{

/// Remembers where the windows on a monitor come from, takes them back there when it goes, and to
/// it when it returns. What it knows is written on the windows, so that it outlives the process.
/// Belongs to the monitor's thread, and keeps it for some hundred milliseconds where windows are to
/// be moved: window managers are not obliged to answer.
class WindowKeeper
{
public:
    /// Begin it before the monitor comes: window managers move windows when it does.
    WindowKeeper(RandrServer& server, const std::string& monitorName, bool keeps);

    /// False without a window manager that could be asked.
    bool isPossible() const { return mDesktop.areManaged(); }
    /// Whether windows are taken back, and return. Otherwise they are only brought into sight.
    void keep(bool flag);
    /// The monitor has come, or is elsewhere now; windows on it go along.
    void setMonitor(const PixelRect& area);
    /// A window may have come, gone or moved.
    void windowsChanged();
    /// Whether something is to be done, and when, as poll() takes it.
    bool isWaiting() const { return mDue.has_value(); }
    int millisecondsLeft() const;
    /// Does it when it is time.
    void look();

    /// Before the monitor goes.
    void takeBack();
    /// Once it has gone: nothing remains out of sight.
    void settle();
    /// Both, for windows of monitors whose makers have died, and for those that their window
    /// manager has lost since. False when there are no windows that were on a monitor.
    bool takeAbandonedBack();

private:
    using Clock = std::chrono::steady_clock;
    using Windows = std::map<xcb_window_t, WindowNote>;
    using Check = std::function<bool(const DesktopWindow&)>;
    using Plan = std::function<PixelRect(const DesktopWindow&)>;
    using Stretches = std::map<xcb_window_t, WindowStretch>;

    void see();
    void note(const DesktopWindow& window);
    void leave(const DesktopWindow& window, bool isHeld);
    void bringToMonitor();
    void moveGuestsBack();
    PixelRect placeOfReturning(const DesktopWindow& window) const;
    bool hasArrived(const DesktopWindow& window) const;
    PixelRect placeOfGuest(const DesktopWindow& window, const std::vector<PixelRect>& screens);
    void bringIntoSight(const std::vector<PixelRect>& screens);
    void writeLastNotes(const std::vector<PixelRect>& screens);
    void moveAll(const Stretches& windows, const Plan& plan);
    void unstretch(const Stretches& windows);
    std::vector<DesktopWindow> among(const Stretches& windows);
    void waitFor(const Stretches& windows, const Check& check);

    DesktopWindows mDesktop;
    std::uint32_t mNumber;
    bool mKeeps;
    PixelRect mMonitor; ///< empty before it has come
    std::map<xcb_window_t, WindowStand> mHomes;
    Windows mReturning; ///< on their way to the monitor
    int mTriesLeft = 0;
    Windows mGuests;                 ///< that were on the monitor when it went
    std::set<xcb_window_t> mAdopted; ///< whose monitor was abandoned
    std::optional<Clock::time_point> mDue;
};

} // namespace farview
