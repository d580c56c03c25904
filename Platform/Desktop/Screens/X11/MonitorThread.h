#pragma once

#include "Platform/Desktop/Screens/X11/CapturedScreen.h"
#include "Platform/Desktop/Screens/X11/RandrServer.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Platform/VirtualScreens.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace farview
{

/// Wakes a thread that waits for files.
class WakeUp
{
public:
    WakeUp();
    void ring() const;
    void silence() const;
    int descriptor() const { return mDescriptor.get(); }

private:
    FileDescriptor mDescriptor;
};

/// What the owner of a monitor asks of its thread; the newest wish replaces older ones.
struct MonitorWishes {
    std::optional<RandrSize> size;
    std::optional<PixelPoint> place;
    bool end = false;
};

/// The thread of one monitor of an X server: makes it, captures it, removes it. All talk with the
/// server happens here.
class MonitorThread
{
public:
    using News = std::function<void(VirtualScreenDelegate&)>;
    /// Called on the thread with what the delegate is to be told.
    using Tell = std::function<void(News)>;

    MonitorThread(ScreenWish wish, std::string watcher, Tell tell);
    /// Removes the monitor. Waits for that, but not for a server that does not answer.
    ~MonitorThread();
    MonitorThread(const MonitorThread&) = delete;
    MonitorThread& operator=(const MonitorThread&) = delete;

    void resize(RandrSize size);
    void place(PixelPoint corner);
    CapturedScreen& screen() { return *mScreen; }

private:
    class Talk;

    void run();
    std::optional<ScreenObstacle> converse();
    std::optional<ScreenObstacle> show(RandrServer& server);
    MonitorWishes takeWishes();
    void wish(const std::function<void(MonitorWishes&)>& change);

    ScreenWish mWish;
    std::string mWatcher;
    std::string mDisplay;
    Tell mTell;
    std::shared_ptr<WakeUp> mWakeUp = std::make_shared<WakeUp>();
    std::shared_ptr<CapturedScreen> mScreen;
    ConnectionBreaker mBreaker;
    std::mutex mMutex;
    std::condition_variable mEnded;
    MonitorWishes mWishes;
    bool mHasEnded = false;
    std::thread mThread;
};

/// What keeps this server from having a monitor, whatever its outputs; nothing when nothing does.
std::optional<ScreenObstacle> obstacleTo(const RandrServer& server);

} // namespace farview
