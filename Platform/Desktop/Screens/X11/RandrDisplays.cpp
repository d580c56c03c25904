#include "Platform/Desktop/Screens/X11/RandrDisplays.h"

#include "Platform/Posix/Environment.h"

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

void hand(const std::vector<RandrNumber>& found, std::span<DisplayConfiguration::Display> room,
          std::uint32_t& count)
{
    count = static_cast<std::uint32_t>(std::min(found.size(), room.size()));
    std::copy_n(found.begin(), count, room.begin());
}

bool isOnline(const RandrLayout& layout, DisplayConfiguration::Display display)
{
    return !outputsShowingTheSame(layout, display).empty();
}

bool isTooLarge(const RandrLayout& layout)
{
    const auto size = neededSize(layout);
    return size.width > layout.largestSize.width || size.height > layout.largestSize.height;
}

} // namespace

std::optional<RandrLayout> RandrDisplays::currentLayout() const
{
    if (!isX11Session())
        return std::nullopt;
    return RandrConnection::ask<std::optional<RandrLayout>>(mLimit, &RandrConnection::layout)
        .value_or(std::nullopt);
}

DisplayConfiguration::Error RandrDisplays::onlineDisplayList(std::span<Display> displays,
                                                             std::uint32_t& count)
{
    const auto layout = currentLayout();
    if (!layout)
        return invalidConnection;
    hand(onlineOutputs(*layout), displays, count);
    return success;
}

DisplayConfiguration::Error
RandrDisplays::displayAliasList(Display display, std::span<Display> displays, std::uint32_t& count)
{
    const auto layout = currentLayout();
    if (!layout)
        return invalidConnection;
    const auto found = outputsShowingTheSame(*layout, display);
    if (found.empty())
        return illegalArgument;
    hand(found, displays, count);
    return success;
}

DisplayConfiguration::Display RandrDisplays::mainDisplay()
{
    const auto layout = currentLayout();
    const auto found = layout ? onlineOutputs(*layout) : std::vector<RandrNumber>{};
    return found.empty() ? 0 : found.front();
}

DisplayConfiguration::Error RandrDisplays::beginConfiguration(Transaction& transaction)
{
    transaction = mNext++;
    mChanges[transaction];
    return success;
}

DisplayConfiguration::Error RandrDisplays::check(Display display, Display master) const
{
    const auto layout = currentLayout();
    if (!layout)
        return invalidConnection;
    const bool isKnown = isOnline(*layout, display) && (master == 0 || isOnline(*layout, master));
    return isKnown ? success : illegalArgument;
}

DisplayConfiguration::Error RandrDisplays::configureMirrorOfDisplay(Transaction transaction,
                                                                    Display display, Display master)
{
    const auto change = mChanges.find(transaction);
    if (change == mChanges.end())
        return invalidContext;
    const auto error = check(display, master);
    if (error == success)
        change->second.steps.push_back({display, master});
    else if (change->second.error == success)
        change->second.error = error;
    return error;
}

DisplayConfiguration::Error RandrDisplays::completeConfiguration(Transaction transaction,
                                                                 std::uint32_t)
{
    const auto found = mChanges.find(transaction);
    if (found == mChanges.end())
        return invalidContext;
    const Change change = std::move(found->second);
    mChanges.erase(found);
    return change.error != success ? change.error : make(change.steps);
}

DisplayConfiguration::Error RandrDisplays::make(const std::vector<Step>& steps) const
{
    if (!isX11Session())
        return invalidConnection;
    // By value: a conversation that takes too long outlives this call.
    const auto error = RandrConnection::ask<Error>(
        mLimit, [steps](RandrConnection& server) { return make(steps, server); });
    return error.value_or(invalidConnection);
}

DisplayConfiguration::Error RandrDisplays::make(const std::vector<Step>& steps,
                                                RandrConnection& server)
{
    server.keepOthersOut();
    const auto from = server.layout();
    if (!from)
        return invalidConnection;
    auto to = from;
    for (const auto& step : steps) {
        to = step.master != 0 ? withMirror(std::move(*to), step.display, step.master)
                              : withoutMirror(std::move(*to), step.display);
        if (!to)
            return cannotComplete;
    }
    if (isTooLarge(*to))
        return rangeCheck;
    return server.change(*from, *to) ? success : cannotComplete;
}

} // namespace farview
