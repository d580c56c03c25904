#pragma once

#include "Platform/Desktop/Screens/X11/ShownMonitor.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace farview
{

/// The thread of one monitor of an X server: makes it, captures it, removes it. All talk with the
/// server happens here.
class MonitorThread
{
public:
    /// `tell` is called on the thread.
    MonitorThread(ScreenWish wish, std::string watcher, ShownMonitor::Tell tell);
    /// Removes the monitor. Waits for that, but not for a server that does not answer.
    ~MonitorThread();
    MonitorThread(const MonitorThread&) = delete;
    MonitorThread& operator=(const MonitorThread&) = delete;

    void resize(RandrSize size);
    void place(PixelPoint corner);
    void setKeepsWindows(bool flag);
    /// False before the monitor has appeared.
    bool canKeepWindows() const { return mCanKeepWindows; }
    CapturedScreen& screen() { return *mScreen; }

private:
    void run();
    std::optional<ScreenObstacle> converse();
    std::optional<ScreenObstacle> show(RandrServer& server, WindowKeeper& windows);

    ScreenWish mWish;
    std::string mWatcher;
    std::string mDisplay;
    ShownMonitor::Tell mTell;
    std::shared_ptr<MonitorOrders> mOrders = std::make_shared<MonitorOrders>();
    std::shared_ptr<CapturedScreen> mScreen;
    ConnectionBreaker mBreaker;
    std::atomic<bool> mCanKeepWindows = false;
    std::mutex mMutex;
    std::condition_variable mEnded;
    bool mHasEnded = false;
    std::thread mThread;
};

/// What keeps this server from having a monitor, whatever its outputs; nothing when nothing does.
std::optional<ScreenObstacle> obstacleTo(const RandrServer& server);

} // namespace farview
