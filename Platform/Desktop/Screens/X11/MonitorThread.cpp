#include "Platform/Desktop/Screens/X11/MonitorThread.h"

#include "Platform/Desktop/Screens/X11/MonitorRemoval.h"
#include "Platform/Desktop/Screens/X11/MonitorWatcher.h"
#include "Platform/Posix/Environment.h"

#include <chrono>
#include <cstdlib>
#include <exception>
#include <utility>

namespace farview
{
namespace
{

/// For removing the monitor, which takes some milliseconds.
constexpr std::chrono::milliseconds patience{500};

/// The watcher of all monitors of this process, until the last of them lets it go: by then nothing
/// is held down any more.
std::shared_ptr<FileDescriptor> sharedWatcher(const std::string& program)
{
    static std::mutex mutex;
    static std::weak_ptr<FileDescriptor> running;
    const std::lock_guard lock(mutex);
    auto watcher = running.lock();
    if (!watcher || !watcher->isOpen())
        running = watcher = {new FileDescriptor(startMonitorWatcher(program)),
                             [](FileDescriptor* ending) {
                                 sayThatAllIsReleased(*ending);
                                 delete ending;
                             }};
    return watcher;
}

} // namespace

MonitorThread::MonitorThread(ScreenWish wish, std::string watcher, ShownMonitor::Tell tell)
    : mWish(std::move(wish)), mWatcher(std::move(watcher)), mTell(std::move(tell)),
      mScreen(std::make_shared<CapturedScreen>([orders = mOrders] { orders->wake(); }))
{
    if (const char* display = std::getenv("DISPLAY"))
        mDisplay = display;
    const WithoutSignals scope;
    mThread = std::thread([this] { run(); });
}

MonitorThread::~MonitorThread()
{
    mOrders->wish([](auto& wishes) { wishes.end = true; });
    {
        std::unique_lock lock(mMutex);
        if (!mEnded.wait_for(lock, patience, [this] { return mHasEnded; }))
            mBreaker.cut();
    }
    mThread.join();
}

void MonitorThread::resize(RandrSize size)
{
    mOrders->wish([=](auto& wishes) { wishes.size = size; });
}

void MonitorThread::place(PixelPoint corner)
{
    mOrders->wish([=](auto& wishes) { wishes.place = corner; });
}

void MonitorThread::setKeepsWindows(bool flag)
{
    mOrders->wish([=](auto& wishes) { wishes.keepsWindows = flag; });
}

void MonitorThread::run()
{
    std::optional<ScreenObstacle> end;
    try {
        // Before the first change, and until the last one is undone.
        const auto watcher = sharedWatcher(mWatcher);
        end = watcher->isOpen() ? converse() : ScreenObstacle::failed;
    } catch (const std::exception&) {
        // No memory.
        end = ScreenObstacle::failed;
    }
    if (end)
        mTell([reason = *end](auto& delegate) { delegate.didEnd(reason); });
    const std::lock_guard lock(mMutex);
    mHasEnded = true;
    mEnded.notify_one();
}

/// Why the monitor ended, or did not begin; nothing when its owner wanted that.
std::optional<ScreenObstacle> MonitorThread::converse()
{
    const auto connection = connectX(mDisplay.c_str());
    const BreakerHold hold(mBreaker, connection.get());
    RandrServer server(connection.get());
    if (const auto obstacle = obstacleTo(server))
        return obstacle;
    // Windows of monitors that nobody watched.
    undoAbandonedMonitors(server);
    WindowKeeper(server, {}, true).takeAbandonedBack();
    WindowKeeper windows(server, mWish.name, mWish.keepsWindows);
    mCanKeepWindows = windows.isPossible();
    const auto end = show(server, windows);
    windows.settle();
    return end;
}

std::optional<ScreenObstacle> MonitorThread::show(RandrServer& server, WindowKeeper& windows)
{
    VirtualMonitor monitor(server);
    if (const auto obstacle = monitor.make(mWish.width, mWish.height))
        return obstacle;
    const auto end = ShownMonitor(server, monitor, windows, *mScreen, *mOrders, mTell).run();
    windows.takeBack();
    return end;
}

std::optional<ScreenObstacle> obstacleTo(const RandrServer& server)
{
    if (!isX11Session() || xcb_connection_has_error(server.connection()) != 0)
        return ScreenObstacle::noDesktop;
    if (!server.isUsable() || !RootCapture::isPossible(server))
        return ScreenObstacle::protocolMissing;
    return std::nullopt;
}

} // namespace farview
