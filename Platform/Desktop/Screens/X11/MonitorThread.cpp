#include "Platform/Desktop/Screens/X11/MonitorThread.h"

#include "Platform/Desktop/Screens/X11/MonitorWatcher.h"
#include "Platform/Desktop/Screens/X11/RootCapture.h"
#include "Platform/Desktop/Screens/X11/RootCursor.h"
#include "Platform/Desktop/Screens/X11/VirtualMonitor.h"
#include "Platform/Posix/Environment.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <xcb/randr.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <utility>

namespace farview
{
namespace
{

using SteadyClock = std::chrono::steady_clock;
using Event = XReply<xcb_generic_event_t>;

/// Between two captures, and between two questions for the pointer.
constexpr std::chrono::microseconds oneFrame{16667};
/// For removing the monitor, which takes some milliseconds.
constexpr std::chrono::milliseconds patience{500};

PixelRect areaOf(const ScreenGeometry& geometry)
{
    return pixelRect(geometry.place.x, geometry.place.y, geometry.width, geometry.height);
}

/// Happens at most once in the length of a frame.
class Beat
{
public:
    bool isDue() const { return SteadyClock::now() >= mNext; }
    void happened() { mNext = SteadyClock::now() + oneFrame; }
    SteadyClock::time_point next() const { return mNext; }

private:
    SteadyClock::time_point mNext;
};

/// How long poll() may sleep until then.
int millisecondsUntil(SteadyClock::time_point time)
{
    const auto span = std::chrono::ceil<std::chrono::milliseconds>(time - SteadyClock::now());
    return static_cast<int>(std::max<std::int64_t>(0, span.count()));
}

/// Removes the monitor at the end of its scope, whatever led there.
class Undoing
{
public:
    explicit Undoing(RandrServer& server) : mServer(server) {}
    ~Undoing() { undoMonitor(mServer); }
    Undoing(const Undoing&) = delete;
    Undoing& operator=(const Undoing&) = delete;

private:
    RandrServer& mServer;
};

} // namespace

WakeUp::WakeUp() : mDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void WakeUp::ring() const { ::eventfd_write(mDescriptor.get(), 1); }

void WakeUp::silence() const
{
    eventfd_t count = 0;
    ::eventfd_read(mDescriptor.get(), &count);
}

/// A monitor that is on, until it ends.
class MonitorThread::Talk
{
public:
    Talk(MonitorThread& thread, RandrServer& server, VirtualMonitor& monitor)
        : mThread(thread), mServer(server), mMonitor(monitor), mCapture(server), mCursor(server)
    {
        const auto* extension = xcb_get_extension_data(server.connection(), &xcb_randr_id);
        mRandrEvent = extension->first_event;
        xcb_randr_select_input(server.connection(), server.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    }

    /// Why it ended; nothing when its owner wanted that.
    std::optional<ScreenObstacle> run()
    {
        auto end = appear();
        if (!end)
            takeShape();
        while (!end && !grantWishes()) {
            serveEvents();
            end = lookAtLayout();
            if (!end) {
                followPointer();
                capture();
                wait();
            }
        }
        return end;
    }

private:
    std::optional<ScreenObstacle> appear();
    bool beginCapture();
    bool grantWishes();
    bool serveEvents();
    void serve(const xcb_generic_event_t& event);
    std::optional<ScreenObstacle> lookAtLayout();
    void takeShape();
    void followPointer();
    bool hasPointerMoved();
    void capture();
    void wait();
    bool canCapture() const { return mIsDamaged && !mIsFrameOut; }

    MonitorThread& mThread;
    RandrServer& mServer;
    VirtualMonitor& mMonitor;
    RootCapture mCapture;
    RootCursor mCursor;
    ScreenGeometry mGeometry;
    std::uint8_t mRandrEvent = 0;
    Beat mFrames;
    Beat mPointer;
    bool mIsDamaged = true;
    bool mIsFrameOut = false;
    bool mIsLayoutStale = false;
    /// The pointer is asked for its position until it rests.
    bool mIsFollowing = true;
    bool mIsListening = true;
    PixelPoint mPointerPlace{-1, -1};
};

std::optional<ScreenObstacle> MonitorThread::Talk::appear()
{
    const auto geometry = mMonitor.geometry();
    if (!geometry)
        return ScreenObstacle::gone;
    mGeometry = *geometry;
    if (!beginCapture())
        return ScreenObstacle::failed;
    mThread.mTell([at = mGeometry](auto& delegate) { delegate.didAppear(at); });
    return std::nullopt;
}

bool MonitorThread::Talk::beginCapture()
{
    const bool hasMemory = mCapture.begin(areaOf(mGeometry));
    if (hasMemory)
        mThread.mScreen->setBuffer(mCapture.view(), mCapture.memory());
    mIsDamaged = true;
    return hasMemory;
}

/// True when the end is wanted.
bool MonitorThread::Talk::grantWishes()
{
    const auto wishes = mThread.takeWishes();
    mIsFrameOut = false;
    if (wishes.size)
        mMonitor.resize(wishes.size->width, wishes.size->height);
    if (wishes.place)
        mMonitor.place(*wishes.place);
    mIsLayoutStale = mIsLayoutStale || wishes.size || wishes.place;
    return wishes.end;
}

/// True when there was one.
bool MonitorThread::Talk::serveEvents()
{
    bool any = false;
    while (const auto event = Event(xcb_poll_for_event(mServer.connection()))) {
        serve(*event);
        any = true;
    }
    return any;
}

void MonitorThread::Talk::serve(const xcb_generic_event_t& event)
{
    const int type = event.response_type & 0x7F;
    if (type == mRandrEvent || type == mRandrEvent + XCB_RANDR_NOTIFY) {
        mIsLayoutStale = true;
    } else if (mCapture.isDamage(event)) {
        mIsDamaged = true;
    } else if (mCursor.isNewShape(event)) {
        takeShape();
    } else if (mCursor.isMotion(event)) {
        mIsFollowing = true;
        if (std::exchange(mIsListening, false))
            mCursor.listenForMotion(false);
    }
}

/// Why there is no monitor any more; nothing while there is.
std::optional<ScreenObstacle> MonitorThread::Talk::lookAtLayout()
{
    if (xcb_connection_has_error(mServer.connection()) != 0)
        return ScreenObstacle::gone;
    if (!std::exchange(mIsLayoutStale, false))
        return std::nullopt;
    const auto found = mMonitor.geometry();
    if (!found)
        return xcb_connection_has_error(mServer.connection()) != 0 ? ScreenObstacle::gone
                                                                   : ScreenObstacle::takenAway;
    if (*found == mGeometry)
        return std::nullopt;
    mGeometry = *found;
    mThread.mTell([at = mGeometry](auto& delegate) { delegate.didChange(at); });
    return beginCapture() ? std::nullopt : std::optional(ScreenObstacle::failed);
}

void MonitorThread::Talk::takeShape()
{
    if (auto image = mCursor.image()) {
        mThread.mScreen->setCursor(std::move(*image));
        mThread.mTell([](auto& delegate) { delegate.cursorChanged(); });
    }
}

/// Asks for its position as long as it moves; then waits until it does again.
void MonitorThread::Talk::followPointer()
{
    if (!mIsFollowing || !mPointer.isDue())
        return;
    mPointer.happened();
    mIsFollowing = hasPointerMoved();
    if (mIsFollowing || std::exchange(mIsListening, true))
        return;
    mCursor.listenForMotion(true);
    // It may have moved just before.
    mIsFollowing = hasPointerMoved();
}

bool MonitorThread::Talk::hasPointerMoved()
{
    const auto at = mCursor.position();
    if (std::exchange(mPointerPlace, at) == at)
        return false;
    const auto area = areaOf(mGeometry);
    const bool isInside = at.x >= area.x && at.x < area.x + area.width && at.y >= area.y &&
                          at.y < area.y + area.height;
    const auto position =
        isInside ? std::optional(pixelPoint(at.x - area.x, at.y - area.y)) : std::nullopt;
    if (mThread.mScreen->moveCursor(position))
        mThread.mTell([](auto& delegate) { delegate.cursorChanged(); });
    return true;
}

void MonitorThread::Talk::capture()
{
    if (!mIsDamaged || !mFrames.isDue())
        return;
    mIsFrameOut = !mThread.mScreen->beginFrame();
    if (mIsFrameOut)
        return;
    mFrames.happened();
    mIsDamaged = false;
    // Programs may move it without an event.
    mIsFollowing = true;
    auto damage = mCapture.capture();
    if (!damage) {
        mIsDamaged = true;
        mIsLayoutStale = true;
    }
    if (mThread.mScreen->endFrame(std::move(damage).value_or(std::vector<PixelRect>{})))
        mThread.mTell([](auto& delegate) { delegate.frameReady(); });
}

/// For the server, for the owner, or until the next frame. An answer that was waited for may have
/// brought events along, which the socket does not show any more.
void MonitorThread::Talk::wait()
{
    xcb_flush(mServer.connection());
    if (const auto event = Event(xcb_poll_for_queued_event(mServer.connection()))) {
        serve(*event);
        return;
    }
    int limit = -1;
    if (canCapture())
        limit = millisecondsUntil(mFrames.next());
    else if (mIsFollowing)
        limit = millisecondsUntil(mPointer.next());
    std::array<pollfd, 2> files{{{xcb_get_file_descriptor(mServer.connection()), POLLIN, 0},
                                 {mThread.mWakeUp->descriptor(), POLLIN, 0}}};
    ::poll(files.data(), files.size(), limit);
}

MonitorThread::MonitorThread(ScreenWish wish, std::string watcher, Tell tell)
    : mWish(std::move(wish)), mWatcher(std::move(watcher)), mTell(std::move(tell)),
      mScreen(std::make_shared<CapturedScreen>([wakeUp = mWakeUp] { wakeUp->ring(); }))
{
    if (const char* display = std::getenv("DISPLAY"))
        mDisplay = display;
    const WithoutSignals scope;
    mThread = std::thread([this] { run(); });
}

MonitorThread::~MonitorThread()
{
    wish([](auto& wishes) { wishes.end = true; });
    {
        std::unique_lock lock(mMutex);
        if (!mEnded.wait_for(lock, patience, [this] { return mHasEnded; }))
            mBreaker.cut();
    }
    mThread.join();
}

void MonitorThread::resize(RandrSize size)
{
    wish([=](auto& wishes) { wishes.size = size; });
}

void MonitorThread::place(PixelPoint corner)
{
    wish([=](auto& wishes) { wishes.place = corner; });
}

void MonitorThread::wish(const std::function<void(MonitorWishes&)>& change)
{
    {
        const std::lock_guard lock(mMutex);
        change(mWishes);
    }
    mWakeUp->ring();
}

MonitorWishes MonitorThread::takeWishes()
{
    mWakeUp->silence();
    const std::lock_guard lock(mMutex);
    return std::exchange(mWishes, {});
}

void MonitorThread::run()
{
    std::optional<ScreenObstacle> end;
    try {
        end = converse();
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

/// Why it ended, or did not begin; nothing when its owner wanted that.
std::optional<ScreenObstacle> MonitorThread::converse()
{
    // Before the first change, and until the last one is undone.
    const auto watcher = startMonitorWatcher(mWatcher);
    const XConnection connection(xcb_connect(mDisplay.c_str(), nullptr));
    mBreaker.hold(xcb_get_file_descriptor(connection.get()));
    RandrServer server(connection.get());
    auto end = obstacleTo(server);
    if (!end && !watcher.isOpen())
        end = ScreenObstacle::failed;
    if (!end && !becomeOwner(server))
        end = ScreenObstacle::inUse;
    if (!end)
        end = show(server);
    mBreaker.release();
    return end;
}

std::optional<ScreenObstacle> MonitorThread::show(RandrServer& server)
{
    // What somebody left who died together with the watcher.
    undoMonitor(server);
    const Undoing scope(server);
    VirtualMonitor monitor(server);
    if (const auto obstacle = monitor.make(mWish.width, mWish.height))
        return obstacle;
    return Talk(*this, server, monitor).run();
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
