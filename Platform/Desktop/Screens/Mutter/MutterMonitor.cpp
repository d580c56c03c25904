#include "Platform/Desktop/Screens/Mutter/MutterMonitor.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace farview
{
namespace
{

/// From the wish to the monitor.
constexpr Duration longestStart{10.0};
/// The stream may end before its session says why.
constexpr Duration patience{1.0};

/// More than any picture that a graphics processor holds.
constexpr int longestSide = 16384;

bool isPossible(int width, int height)
{
    return width > 0 && width <= longestSide && height > 0 && height <= longestSide;
}

PixelPoint cornerOf(const LogicalMonitor& part)
{
    using Limits = std::numeric_limits<std::int16_t>;
    return pixelPoint(std::clamp<int>(part.x, Limits::min(), Limits::max()),
                      std::clamp<int>(part.y, Limits::min(), Limits::max()));
}

} // namespace

MutterMonitor::MutterMonitor(RunLoop& loop, SessionBus& bus, const ScreenWish& wish,
                             VirtualScreens::Delegate delegate)
    : mLoop(loop), mDelegate(std::move(delegate)), mWish(wish),
      mSession(bus, {[this] { mDisplays.ask(); },
                     [this](auto node) { mStream.connect(node, mWish.width, mWish.height); },
                     [this](auto reason) { end(reason); }}),
      mDisplays(bus, [this](const auto* state) { useState(state); }),
      mStream(loop, {[this] { tellOfPicture([](auto& told) { told.frameReady(); }); },
                     [this] { tellOfPicture([](auto& told) { told.cursorChanged(); }); },
                     [this] {
                         mLoop.performAfterDelay(patience, mLife,
                                                 [this] { end(ScreenObstacle::failed); });
                     }})
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

/// One that Mutter refuses is forgotten.
void MutterMonitor::applyWish()
{
    if (mState)
        mDisplays.apply(*mState, {layoutWithOurs(mCorner)});
}

void MutterMonitor::useState(const DisplayState* state)
{
    if (!state)
        return end(ScreenObstacle::failed);
    if (mBefore)
        return follow(*state);
    mBefore = *state;
    mUsers = state->layout;
    mSession.start();
}

void MutterMonitor::follow(const DisplayState& state)
{
    if (mHasEnded || !isThere(state))
        return;
    const bool isArrangedByMutter = !mState || mState->serial != state.serial;
    mState = state;
    const auto others = without(state.layout, *mOurs);
    if (!isArrangedByMutter || !haveSameMonitors(others, mUsers))
        mUsers = others;
    const auto wanted = layoutWithOurs(mCorner);
    if (isArrangedByMutter && !isSameLayout(wanted, state.layout))
        mDisplays.apply(state, {wanted, layoutWithOurs(std::nullopt)});
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
    const auto corner = cornerOf(*part);
    if (corner != mCorner.value_or(besideEverything(*mState, mUsers)))
        mCorner = corner;
    if (part->scale != possibleScale(*mode(), mWish.scale))
        mWish.scale = part->scale;
    report({areaOf(*mState, *part), mode()->width, mode()->height, part->scale, mode()->rate,
            areasOf(*mState, without(mState->layout, *mOurs))});
}

DisplayLayout MutterMonitor::layoutWithOurs(std::optional<PixelPoint> corner) const
{
    const auto place = corner.value_or(besideEverything(*mState, mUsers));
    const double scale = mode() ? possibleScale(*mode(), mWish.scale) : 1;
    auto layout = mUsers;
    layout.append({place.x, place.y, scale, 0, false, {*mOurs}});
    return withPrimary(layout);
}

void MutterMonitor::report(const ScreenGeometry& geometry)
{
    const auto before = std::exchange(mTold, geometry);
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

/// Mutter arranges the monitors that are left by itself, and not always as they were.
void MutterMonitor::remove()
{
    mSession.stop();
    if (const auto state = std::exchange(mState, std::nullopt); state && !mUsers.isEmpty())
        mDisplays.applyNext(*state, withPrimary(mUsers));
}

} // namespace farview
