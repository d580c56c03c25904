#include "Platform/Desktop/Screens/Mutter/MutterLayout.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace farview
{

MutterLayout::MutterLayout(RunLoop& loop, SessionBus& bus)
    : mLoop(loop), mBus(bus), mDisplays(bus, [this](const auto* state) { useState(state); })
{
}

void MutterLayout::add(MutterPart& part)
{
    mParts.push_back(&part);
    beginNext();
}

void MutterLayout::remove(MutterPart& part)
{
    if (std::erase(mParts, &part) == 0)
        return;
    if (mOpening == &part)
        mOpening = nullptr;
    if (part.id && mState)
        expectWithout(*part.id);
    beginNext();
}

void MutterLayout::expectWithout(const MonitorId& id)
{
    mRemoved.append(id);
    mState->serial += 1;
    mState->layout = without(mState->layout, id);
    mState->monitors.removeIf([&](const auto& monitor) { return monitor.id == id; });
    // For a program that ends now. It may come too early: then Mutter arranges them once more.
    mBus.send(layoutCall(*mState, wished()));
    mLoop.performAfterDelay(LayoutJudge::longestDelay, weak_from_this(),
                            [kept = shared_from_this()] {});
}

void MutterLayout::beginNext()
{
    if (mOpening)
        return;
    const auto next = std::find_if(mParts.begin(), mParts.end(),
                                   [](const auto* part) { return !part->id.has_value(); });
    mBefore.reset();
    if (next == mParts.end())
        return;
    mOpening = *next;
    mDisplays.ask();
}

void MutterLayout::useState(const DisplayState* state)
{
    if (!state) {
        for (const auto* part : mParts)
            part->lost(ScreenObstacle::failed);
        return;
    }
    if (mOpening && !mBefore) {
        mBefore = *state;
        mOpening->mayBegin();
    }
    mRemoved.removeIf([&](const auto& id) { return !state->monitor(id); });
    findOpening(*state);
    if (isSettled(*state))
        follow(*state);
    beginNext();
}

void MutterLayout::findOpening(const DisplayState& state)
{
    const auto* monitor =
        mOpening ? newMonitor(*mBefore, state, mOpening->wish.width, mOpening->wish.height)
                 : nullptr;
    if (monitor)
        std::exchange(mOpening, nullptr)->id = monitor->id;
}

/// Whether all monitors are known that the state tells of: not one of ours that will go, nor one
/// that may become ours.
bool MutterLayout::isSettled(const DisplayState& state) const
{
    return std::none_of(state.monitors.begin(), state.monitors.end(), [&](const auto& monitor) {
        return mRemoved.contains(monitor.id) || (mOpening && !mBefore->monitor(monitor.id));
    });
}

void MutterLayout::follow(const DisplayState& state)
{
    mState = state;
    const bool isMutters = mJudge.isMutters(state, mLoop.now());
    const auto users = usersOf(state.layout);
    if (!isMutters || !haveSameMonitors(users, mUsers))
        mUsers = users;
    if (!isSameLayout(wished(), state.layout) &&
        (std::exchange(mHasWish, false) || (isMutters && mJudge.mayReplace()))) {
        mHasReplaced = mHasReplaced || isMutters;
        return apply();
    }
    for (auto* part : mParts)
        adopt(*part);
    mHasReplaced = false;
}

/// What others, or Mutter, made of the wishes is what is wanted from now on.
void MutterLayout::adopt(MutterPart& part)
{
    if (!part.id || !mState->monitor(*part.id))
        return;
    const auto* shown = shownBy(mState->layout, *part.id);
    const auto* mode = modeOf(part);
    if (!shown || !mode)
        return part.lost(ScreenObstacle::takenAway);
    const auto area = areaOf(*mState, *shown);
    if (!isResizing(part)) {
        part.corner = PixelPoint{area.x, area.y};
        if (shown->scale != possibleScale(*mode, part.wish.scale))
            part.wish.scale = shown->scale;
    }
    part.stands({area, mode->width, mode->height, shown->scale, mode->rate, othersThan(part)},
                mHasReplaced);
}

// While another size is to come, the layout is made anew with that: nothing is shown in between.

void MutterLayout::setScale(MutterPart& part, double scale)
{
    const auto* mode = modeOf(part);
    if (mode && !isResizing(part) && std::abs(possibleScale(*mode, scale) - scale) > scaleAccuracy)
        return;
    part.wish.scale = scale;
    if (!isResizing(part))
        applySoon();
}

void MutterLayout::place(MutterPart& part, PixelPoint corner)
{
    const auto before = std::exchange(part.corner, corner);
    if (!modeOf(part) || isResizing(part))
        return;
    const auto layout = wished();
    const auto* shown = shownBy(layout, *part.id);
    if (shown->x != corner.x || shown->y != corner.y)
        part.corner = before;
    applySoon();
}

void MutterLayout::applySoon()
{
    if (mDisplays.isApplying())
        mHasWish = true;
    else
        apply();
}

void MutterLayout::apply()
{
    if (mState && !isSameLayout(wished(), mState->layout))
        mDisplays.apply(*mState, {wished(), arranged([](auto&&...) { return false; })});
}

/// With ours where they are or shall be; if Mutter allows that only for some, with the others
/// beside everything.
DisplayLayout MutterLayout::wished() const
{
    const auto kept = arranged([](auto&&...) { return true; });
    return isPossible(areasOf(*mState, kept)) ? kept : arranged(standsWell);
}

/// With ours where they are or shall be if they may stay there among those before them, else beside
/// everything.
DisplayLayout MutterLayout::arranged(const Permission& mayStay) const
{
    auto layout = mUsers;
    for (const auto* part : mParts) {
        const auto* mode = modeOf(*part);
        if (!mode)
            continue;
        const auto before = areasOf(*mState, layout);
        const auto beside = besideEverything(before);
        const auto corner = part->corner.value_or(beside);
        const double scale = possibleScale(*mode, part->wish.scale);
        LogicalMonitor wanted{corner.x, corner.y, scale, 0, false, {*part->id}};
        if (!mayStay(areaOf(*mState, wanted), before)) {
            wanted.x = beside.x;
            wanted.y = beside.y;
        }
        layout.append(wanted);
    }
    return withPrimary(layout);
}

DisplayLayout MutterLayout::usersOf(DisplayLayout layout) const
{
    for (const auto* part : mParts) {
        if (part->id)
            layout = without(layout, *part->id);
    }
    return layout;
}

std::vector<PixelRect> MutterLayout::othersThan(const MutterPart& part) const
{
    auto areas = areasOf(*mState, usersOf(mState->layout));
    for (const auto* other : mParts) {
        const auto* shown = other->id ? shownBy(mState->layout, *other->id) : nullptr;
        if (shown && other != &part)
            areas.push_back(areaOf(*mState, *shown));
    }
    return areas;
}

bool MutterLayout::isResizing(const MutterPart& part) const
{
    const auto* mode = modeOf(part);
    return mode && (mode->width != part.wish.width || mode->height != part.wish.height);
}

/// Null while it is off, or not there.
const MonitorMode* MutterLayout::modeOf(const MutterPart& part) const
{
    const auto* monitor = mState && part.id ? mState->monitor(*part.id) : nullptr;
    return monitor ? monitor->currentMode() : nullptr;
}

} // namespace farview
