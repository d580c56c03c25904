#include "Platform/Desktop/Screens/Mutter/MutterMonitor.h"

#include <cmath>
#include <utility>

namespace farview
{
namespace
{

/// From the wish to the monitor.
constexpr Duration longestStart{10.0};
/// Session, stream and bus may end together, and each says something else.
constexpr Duration patience{0.5};

/// More than any picture that a graphics processor holds.
constexpr int longestSide = 16384;

bool isPossible(int width, int height)
{
    return width > 0 && width <= longestSide && height > 0 && height <= longestSide;
}

} // namespace

MutterMonitor::MutterMonitor(RunLoop& loop, SessionBus& bus, const ScreenWish& wish,
                             VirtualScreens::Delegate delegate)
    : mLoop(loop), mBus(bus), mDelegate(std::move(delegate)), mWish(wish),
      mSession(bus, {[this] { mDisplays.ask(); },
                     [this](auto node) { mStream.connect(node, mWish.width, mWish.height); },
                     [this](auto reason) { lose(reason); }}),
      mDisplays(bus, [this](const auto* state) { useState(state); }),
      mStream(loop, {[this] { tellOfPicture([](auto& told) { told.frameReady(); }); },
                     [this] { tellOfPicture([](auto& told) { told.cursorChanged(); }); },
                     [this](auto reason) { lose(reason); }})
{
    begin();
}

MutterMonitor::~MutterMonitor() { remove(); }

void MutterMonitor::begin()
{
    if (!isPossible(mWish.width, mWish.height))
        return end(ScreenObstacle::tooLarge);
    mSession.prepare();
    mLoop.performAfterDelay(longestStart, mLife, [this] {
        if (!mTold)
            end(ScreenObstacle::failed);
    });
}

void MutterMonitor::resize(int width, int height)
{
    if (!isPossible(width, height))
        return;
    mWish.width = width;
    mWish.height = height;
    mStream.resize(width, height);
}

void MutterMonitor::setScale(double scale)
{
    if (mState && mode() && std::abs(possibleScale(*mode(), scale) - scale) > scaleAccuracy)
        return;
    mWish.scale = scale;
    applyWish();
}

void MutterMonitor::place(PixelPoint corner)
{
    mCorner = corner;
    applyWish();
}

/// Where Mutter refuses that, the monitor stays where it is, or goes where there is room.
void MutterMonitor::applyWish()
{
    if (!mState)
        return;
    QList<DisplayLayout> choices = {layoutWithOurs(mCorner), layoutWithOurs(std::nullopt)};
    if (mTold)
        choices.insert(1, layoutWithOurs(PixelPoint{mTold->area.x, mTold->area.y}));
    mDisplays.apply(*mState, choices);
}

void MutterMonitor::useState(const DisplayState* state)
{
    if (!state)
        return endSoon(ScreenObstacle::failed);
    if (mBefore)
        return follow(*state);
    mBefore = *state;
    mUsers = state->layout;
    mSession.start();
    mInput.makeDevices();
}

void MutterMonitor::follow(const DisplayState& state)
{
    if (mHasEnded || !isThere(state))
        return;
    mState = state;
    const bool isMutters = mJudge.isMutters(state, mLoop.now());
    const auto others = without(state.layout, *mOurs);
    if (!isMutters || !haveSameMonitors(others, mUsers))
        mUsers = others;
    if (isMutters && !isSameLayout(layoutWithOurs(mCorner), state.layout) && mJudge.mayReplace())
        applyWish();
    else
        adoptLayout();
}

bool MutterMonitor::isThere(const DisplayState& state)
{
    if (mOurs)
        return state.monitor(*mOurs) != nullptr;
    const auto* monitor = newMonitor(*mBefore, state, mWish.width, mWish.height);
    if (monitor)
        mOurs = monitor->id;
    return monitor != nullptr;
}

const MonitorMode* MutterMonitor::mode() const { return mState->monitor(*mOurs)->currentMode(); }

/// What others, or Mutter, made of our wishes is what is wanted from now on.
void MutterMonitor::adoptLayout()
{
    const auto* part = shownBy(mState->layout, *mOurs);
    if (!part || !mode())
        return end(ScreenObstacle::takenAway);
    const auto others = areasOf(*mState, mUsers);
    const auto area = areaOf(*mState, *part);
    const PixelPoint corner{area.x, area.y};
    if (corner != mCorner.value_or(besideEverything(others)))
        mCorner = corner;
    if (part->scale != possibleScale(*mode(), mWish.scale))
        mWish.scale = part->scale;
    report({area, mode()->width, mode()->height, part->scale, mode()->rate, others});
}

DisplayLayout MutterMonitor::layoutWithOurs(std::optional<PixelPoint> corner) const
{
    const auto place = corner.value_or(besideEverything(areasOf(*mState, mUsers)));
    const double scale = mode() ? possibleScale(*mode(), mWish.scale) : 1;
    auto layout = mUsers;
    layout.append({place.x, place.y, scale, 0, false, {*mOurs}});
    return withPrimary(layout);
}

void MutterMonitor::report(const ScreenGeometry& geometry)
{
    const auto before = std::exchange(mTold, geometry);
    mInput.setMonitor(geometry);
    if (!before)
        tell([geometry](auto& told) { told.didAppear(geometry); });
    else if (geometry != *before)
        tell([geometry](auto& told) { told.didChange(geometry); });
    for (auto& news : std::exchange(mEarly, {}))
        tell(std::move(news));
}

void MutterMonitor::tellOfPicture(News news)
{
    if (mTold)
        tell(std::move(news));
    else
        mEarly.push_back(std::move(news));
}

void MutterMonitor::tell(News news)
{
    if (!mHasEnded)
        mLoop.post(mLife, [delegate = mDelegate, news = std::move(news)] {
            if (const auto told = delegate.lock())
                news(*told);
        });
}

void MutterMonitor::end(ScreenObstacle reason)
{
    tell([reason](auto& told) { told.didEnd(reason); });
    mHasEnded = true;
    remove();
}

/// Mutter closes the session when PipeWire ends, and the node goes when the session is closed.
void MutterMonitor::lose(ScreenObstacle reason)
{
    if (reason == ScreenObstacle::takenAway)
        endSoon(reason);
    else
        end(reason);
}

/// Unless somebody who knows more says so first.
void MutterMonitor::endSoon(ScreenObstacle reason)
{
    mLoop.performAfterDelay(patience, mLife, [this, reason] { end(reason); });
}

void MutterMonitor::remove()
{
    mInput.end();
    mSession.stop();
    if (const auto state = std::exchange(mState, std::nullopt); state && !mUsers.isEmpty())
        restoreLayout(mLoop, mBus, *state, *mOurs, withPrimary(mUsers));
}

} // namespace farview
