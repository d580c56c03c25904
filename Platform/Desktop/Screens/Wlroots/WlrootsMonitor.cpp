#include "Platform/Desktop/Screens/Wlroots/WlrootsMonitor.h"

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

/// From the wish to the monitor.
constexpr Duration longestStart{10.0};
/// More than any picture that a graphics processor holds.
constexpr int longestSide = 16384;
constexpr double largestScale = 10;

bool isPossible(int width, int height)
{
    return width > 0 && width <= longestSide && height > 0 && height <= longestSide;
}

} // namespace

/// It puts the first of them to 0,0 and each further one to the right of what is there.
bool areAllPlaced(const std::vector<PixelRect>& screens)
{
    return std::none_of(screens.begin(), screens.end(), [&](const auto& screen) {
        const bool isFirst = screen.x == 0 && screen.y == 0;
        return isFirst || std::any_of(screens.begin(), screens.end(), [&](const auto& other) {
                   return screen.x == other.x + other.width && screen.y == other.y;
               });
    });
}

WlrootsMonitor::WlrootsMonitor(RunLoop& loop, std::shared_ptr<WlrootsSession> session,
                               const ScreenWish& wish, VirtualScreens::Delegate delegate)
    : mLoop(loop), mSession(std::move(session)), mDelegate(std::move(delegate)), mWish(wish),
      mCopy(loop, {[this] { tell([](auto& told) { told.frameReady(); }); },
                   [this] { end(ScreenObstacle::failed); }})
{
    start();
}

void WlrootsMonitor::start()
{
    if (!isPossible(mWish.width, mWish.height))
        return end(ScreenObstacle::tooLarge);
    mChanges = mSession->observe([this] { follow(); });
    mLoop.performAfterDelay(longestStart, mWaiting, [this] { end(ScreenObstacle::failed); });
    mLoop.post(mLife, [this] { follow(); });
}

WlrootsMonitor::~WlrootsMonitor() { remove(); }

void WlrootsMonitor::follow()
{
    const auto& availability = mSession->availability();
    if (mHasEnded || !availability)
        return;
    if (!availability->way)
        end(availability->obstacle);
    else if (mSession->hasEnded())
        end(ScreenObstacle::gone);
    else if (!std::exchange(mHasBegun, true))
        begin();
    else
        look();
}

void WlrootsMonitor::begin()
{
    if (auto* sway = mSession->sway()) {
        mWindows.emplace(*sway, mWish.name, mWish.keepsWindows);
        mWindowChanges = mSession->windowChanged().add([this] { mWindows->look(); });
    }
    mSession->take(mLife, [this](const auto& name) { use(name); });
}

void WlrootsMonitor::use(const std::string& name)
{
    if (name.empty())
        return end(ScreenObstacle::failed);
    mName = name;
    // It may have ended while it waited.
    if (mHasEnded)
        return remove();
    configure();
}

void WlrootsMonitor::configure()
{
    if (mName.empty() || mHasEnded)
        return;
    const auto then = [this, life = std::weak_ptr(mLife)](bool isDone) {
        if (!life.expired() && !mIsConfigured)
            isDone ? expectOutput() : end(ScreenObstacle::failed);
    };
    mSession->control().configure({mName, mWish.width, mWish.height, mWish.scale, mCorner}, then);
}

/// What was told of the output until now may be what it was before it became this monitor.
void WlrootsMonitor::expectOutput()
{
    mSession->wayland().afterAll([this, life = std::weak_ptr(mLife)] {
        if (life.expired() || mHasEnded)
            return;
        mIsConfigured = true;
        look();
    });
}

void WlrootsMonitor::look()
{
    const auto output = mSession->find(mName);
    if (!output && mTold)
        return end(ScreenObstacle::takenAway);
    if (!output || !mIsConfigured ||
        (!mTold && (output->width != mWish.width || output->height != mWish.height)))
        return;
    const auto geometry = geometryOf(*output);
    const auto before = std::exchange(mTold, geometry);
    mInput.setMonitor(geometry);
    if (!before)
        return appear(*output);
    if (geometry != *before)
        tell([geometry](auto& told) { told.didChange(geometry); });
    if (geometry.width != before->width || geometry.height != before->height)
        mCopy.restart();
}

void WlrootsMonitor::appear(const WaylandOutput& output)
{
    mWaiting.reset();
    tell([geometry = *mTold](auto& told) { told.didAppear(geometry); });
    mCopy.start(mSession->wayland(), output.proxy);
    if (mWish.input)
        mInput.begin(mSession->wayland(), output.proxy);
    if (mWindows)
        mWindows->begin(mName);
}

ScreenGeometry WlrootsMonitor::geometryOf(const WaylandOutput& output) const
{
    ScreenGeometry geometry{output.area, output.width, output.height, output.scale(),
                            output.rate / 1000.0};
    for (const auto& other : mSession->outputs()) {
        if (other.name != mName)
            geometry.others.push_back(other.area);
    }
    return geometry;
}

void WlrootsMonitor::resize(int width, int height)
{
    if (!isPossible(width, height))
        return;
    mWish.width = width;
    mWish.height = height;
    configure();
}

void WlrootsMonitor::setScale(double scale)
{
    if (!(scale > 0 && scale <= largestScale))
        return;
    mWish.scale = scale;
    configure();
}

void WlrootsMonitor::place(PixelPoint corner)
{
    if (!mTold || !areAllPlaced(mTold->others))
        return;
    mCorner = corner;
    configure();
}

void WlrootsMonitor::setKeepsWindows(bool flag)
{
    mWish.keepsWindows = flag;
    if (mWindows)
        mWindows->keep(flag);
}

WindowKeeping WlrootsMonitor::windowKeeping() const
{
    return mSession->sway() ? WindowKeeping::byFarview : WindowKeeping::nobody;
}

void WlrootsMonitor::tell(News news)
{
    if (!mHasEnded)
        mLoop.post(mLife, [delegate = mDelegate, news = std::move(news)] {
            if (const auto told = delegate.lock())
                news(*told);
        });
}

void WlrootsMonitor::end(ScreenObstacle reason)
{
    tell([reason](auto& told) { told.didEnd(reason); });
    mHasEnded = true;
    remove();
}

void WlrootsMonitor::remove()
{
    mCopy.stop();
    mInput.end();
    mWindowChanges.end();
    mWindows.reset();
    if (!mName.empty())
        mSession->giveBack(std::exchange(mName, {}));
}

} // namespace farview
