#pragma once

#include "Platform/Desktop/Screens/CapturedScreen.h"
#include "Platform/Desktop/Screens/X11/MonitorOrders.h"
#include "Platform/Desktop/Screens/X11/RootCapture.h"
#include "Platform/Desktop/Screens/X11/RootCursor.h"
#include "Platform/Desktop/Screens/X11/VirtualMonitor.h"
#include "Platform/Desktop/Screens/X11/WindowKeeper.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <optional>

namespace farview
{

/// Happens at most once in the length of a frame, on average: what came late does not delay the
/// next.
class Beat
{
public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::microseconds length{16667};

    bool isDue() const { return Clock::now() >= mNext; }
    void happened() { mNext = std::max(mNext, Clock::now() - length / 2) + length; }
    /// As poll() takes it.
    int millisecondsLeft() const;

private:
    Clock::time_point mNext;
};

/// A monitor that is on: captures it, follows the pointer, does what its owner asks, and notices
/// what others do to it. One thread; waits for the server.
class ShownMonitor
{
public:
    using News = std::function<void(VirtualScreenDelegate&)>;
    /// Called with what the delegate is to be told.
    using Tell = std::function<void(News)>;

    ShownMonitor(RandrServer& server, VirtualMonitor& monitor, WindowKeeper& windows,
                 CapturedScreen& screen, MonitorOrders& orders, Tell tell);

    /// Until it ends. Why; nothing when its owner wanted that.
    std::optional<ScreenObstacle> run();

private:
    std::optional<ScreenObstacle> appear();
    bool beginCapture();
    bool grantWishes();
    void serveEvents();
    void serve(const xcb_generic_event_t& event);
    std::optional<ScreenObstacle> lookAtLayout();
    void takeShape();
    void followPointer();
    bool hasPointerMoved();
    void capture();
    void wait();
    int longestWait() const;

    RandrServer& mServer;
    VirtualMonitor& mMonitor;
    WindowKeeper& mWindows;
    CapturedScreen& mScreen;
    MonitorOrders& mOrders;
    Tell mTell;
    RootCapture mCapture;
    RootCursor mCursor;
    ScreenGeometry mGeometry;
    std::uint8_t mRandrEvent = 0;
    Beat mFrames;
    Beat mPointer;
    Beat mLayouts; ///< others may be stubborn
    bool mIsDamaged = true;
    bool mIsFrameOut = false;
    bool mIsLayoutStale = false;
    /// The pointer is asked for its position until it rests.
    bool mIsFollowing = true;
    bool mIsListening = true;
    PixelPoint mPointerPlace{-1, -1};
};

} // namespace farview
