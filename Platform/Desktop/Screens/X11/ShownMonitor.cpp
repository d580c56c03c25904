#include "Platform/Desktop/Screens/X11/ShownMonitor.h"

#include <poll.h>
#include <xcb/randr.h>

#include <algorithm>
#include <array>
#include <utility>

namespace farview
{
namespace
{

using Event = XReply<xcb_generic_event_t>;

bool isConfiguration(const xcb_generic_event_t& event, xcb_window_t window)
{
    return (event.response_type & 0x7F) == XCB_CONFIGURE_NOTIFY &&
           reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == window;
}

} // namespace

int Beat::millisecondsLeft() const
{
    const auto span = std::chrono::ceil<std::chrono::milliseconds>(mNext - Clock::now());
    return static_cast<int>(std::max<std::int64_t>(0, span.count()));
}

ShownMonitor::ShownMonitor(RandrServer& server, VirtualMonitor& monitor, WindowKeeper& windows,
                           CapturedScreen& screen, MonitorOrders& orders, Tell tell)
    : mServer(server), mMonitor(monitor), mWindows(windows), mScreen(screen), mOrders(orders),
      mTell(std::move(tell)), mCapture(server), mCursor(server),
      mRandrEvent(xcb_get_extension_data(server.connection(), &xcb_randr_id)->first_event)
{
    xcb_randr_select_input(server.connection(), server.root(),
                           XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    // Monitors that no output shows change without an event of RandR.
    const std::uint32_t structure =
        XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(server.connection(), server.root(), XCB_CW_EVENT_MASK, &structure);
}

std::optional<ScreenObstacle> ShownMonitor::run()
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
            mWindows.look();
            wait();
        }
    }
    return end;
}

std::optional<ScreenObstacle> ShownMonitor::appear()
{
    const auto geometry = mMonitor.geometry();
    if (!geometry)
        return ScreenObstacle::gone;
    mGeometry = *geometry;
    mWindows.setMonitor(mGeometry.area);
    if (!beginCapture())
        return ScreenObstacle::failed;
    mTell([at = mGeometry](auto& delegate) { delegate.didAppear(at); });
    return std::nullopt;
}

bool ShownMonitor::beginCapture()
{
    const bool hasMemory = mCapture.begin(mGeometry.area);
    if (hasMemory)
        mScreen.setBuffer(mCapture.view(), mCapture.memory());
    mIsDamaged = true;
    return hasMemory;
}

/// True when the end is wanted.
bool ShownMonitor::grantWishes()
{
    const auto wishes = mOrders.take();
    mIsFrameOut = false;
    if (wishes.size)
        mMonitor.resize(wishes.size->width, wishes.size->height);
    if (wishes.place)
        mMonitor.place(*wishes.place);
    mIsLayoutStale = mIsLayoutStale || wishes.size || wishes.place;
    if (wishes.keepsWindows)
        mWindows.keep(*wishes.keepsWindows);
    return wishes.end;
}

void ShownMonitor::serveEvents()
{
    while (const auto event = Event(xcb_poll_for_event(mServer.connection())))
        serve(*event);
}

void ShownMonitor::serve(const xcb_generic_event_t& event)
{
    const int type = event.response_type & 0x7F;
    if (type == mRandrEvent || type == mRandrEvent + XCB_RANDR_NOTIFY ||
        isConfiguration(event, mServer.root())) {
        mIsLayoutStale = true;
    } else if (type >= XCB_CREATE_NOTIFY && type <= XCB_CONFIGURE_NOTIFY) {
        mWindows.windowsChanged();
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
std::optional<ScreenObstacle> ShownMonitor::lookAtLayout()
{
    if (xcb_connection_has_error(mServer.connection()) != 0)
        return ScreenObstacle::gone;
    if (!mIsLayoutStale || !mLayouts.isDue())
        return std::nullopt;
    mLayouts.happened();
    mIsLayoutStale = false;
    const auto found = mMonitor.geometry();
    if (!found)
        return xcb_connection_has_error(mServer.connection()) != 0 ? ScreenObstacle::gone
                                                                   : ScreenObstacle::takenAway;
    if (*found == mGeometry)
        return std::nullopt;
    const bool isElsewhere = std::exchange(mGeometry, *found).area != found->area;
    if (isElsewhere)
        mWindows.setMonitor(mGeometry.area);
    if (isElsewhere && !beginCapture())
        return ScreenObstacle::failed;
    mTell([at = mGeometry](auto& delegate) { delegate.didChange(at); });
    return std::nullopt;
}

void ShownMonitor::takeShape()
{
    if (auto image = mCursor.image()) {
        mScreen.setCursor(std::move(*image));
        mTell([](auto& delegate) { delegate.cursorChanged(); });
    }
}

/// Asks for its position as long as it moves; then waits until it does again.
void ShownMonitor::followPointer()
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

bool ShownMonitor::hasPointerMoved()
{
    const auto at = mCursor.position();
    if (std::exchange(mPointerPlace, at) == at)
        return false;
    const auto area = mGeometry.area;
    const bool isInside = at.x >= area.x && at.x < area.x + area.width && at.y >= area.y &&
                          at.y < area.y + area.height;
    const auto position =
        isInside ? std::optional(pixelPoint(at.x - area.x, at.y - area.y)) : std::nullopt;
    if (mScreen.moveCursor(position))
        mTell([](auto& delegate) { delegate.cursorChanged(); });
    return true;
}

void ShownMonitor::capture()
{
    if (!mIsDamaged || mIsLayoutStale || !mFrames.isDue())
        return;
    mIsFrameOut = !mScreen.beginFrame();
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
    if (mScreen.endFrame(std::move(damage).value_or(std::vector<PixelRect>{})))
        mTell([](auto& delegate) { delegate.frameReady(); });
}

/// For the server, for the owner, or until the next frame. An answer that was waited for may have
/// brought events along, which the socket does not show any more.
void ShownMonitor::wait()
{
    xcb_flush(mServer.connection());
    if (const auto event = Event(xcb_poll_for_queued_event(mServer.connection()))) {
        serve(*event);
        return;
    }
    std::array<pollfd, 2> files{{{xcb_get_file_descriptor(mServer.connection()), POLLIN, 0},
                                 {mOrders.descriptor(), POLLIN, 0}}};
    ::poll(files.data(), files.size(), longestWait());
}

int ShownMonitor::longestWait() const
{
    int limit = -1; // for ever
    const auto notBeyond = [&](const auto& dueDate) {
        const int left = dueDate.millisecondsLeft();
        limit = limit < 0 ? left : std::min(limit, left);
    };
    if (mIsDamaged && !mIsFrameOut && !mIsLayoutStale)
        notBeyond(mFrames);
    if (mIsFollowing)
        notBeyond(mPointer);
    if (mIsLayoutStale)
        notBeyond(mLayouts);
    if (mWindows.isWaiting())
        notBeyond(mWindows);
    return limit;
}

} // namespace farview
