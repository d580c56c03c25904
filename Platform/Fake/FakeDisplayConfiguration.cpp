#include "Platform/Fake/FakeDisplayConfiguration.h"

#include <algorithm>

namespace farview
{
namespace
{

void hand(const std::vector<DisplayConfiguration::Display>& found,
          std::span<DisplayConfiguration::Display> room, std::uint32_t& count)
{
    count = static_cast<std::uint32_t>(std::min(found.size(), room.size()));
    std::copy_n(found.begin(), count, room.begin());
}

} // namespace

DisplayConfiguration::Error FakeDisplayConfiguration::note(const std::string& call,
                                                           std::vector<std::uint32_t> arguments)
{
    std::string line = call;
    for (const auto argument : arguments)
        line += " " + std::to_string(argument);
    mCalls.push_back(line);
    const auto found = mErrors.find(call);
    return found == mErrors.end() ? success : found->second;
}

FakeDisplayConfiguration::Shown* FakeDisplayConfiguration::find(Display display)
{
    const auto found = std::find_if(mDisplays.begin(), mDisplays.end(),
                                    [&](const auto& each) { return each.display == display; });
    return found == mDisplays.end() ? nullptr : &*found;
}

DisplayConfiguration::Error FakeDisplayConfiguration::onlineDisplayList(std::span<Display> displays,
                                                                        std::uint32_t& count)
{
    if (const auto error = note("list", {static_cast<std::uint32_t>(displays.size())}))
        return error;
    std::vector<Display> found;
    for (const auto& each : mDisplays)
        found.push_back(each.display);
    hand(found, displays, count);
    return success;
}

DisplayConfiguration::Error FakeDisplayConfiguration::displayAliasList(Display display,
                                                                       std::span<Display> displays,
                                                                       std::uint32_t& count)
{
    if (const auto error = note("aliases", {display, static_cast<std::uint32_t>(displays.size())}))
        return error;
    const Shown* shown = find(display);
    if (!shown)
        return illegalArgument;
    std::vector<Display> found{display};
    for (const auto& each : mDisplays) {
        if (each.place == shown->place && each.display != display)
            found.push_back(each.display);
    }
    hand(found, displays, count);
    return success;
}

DisplayConfiguration::Display FakeDisplayConfiguration::mainDisplay()
{
    note("main", {});
    return mDisplays.empty() ? 0 : mDisplays.front().display;
}

DisplayConfiguration::Error FakeDisplayConfiguration::beginConfiguration(Transaction& transaction)
{
    if (const auto error = note("begin", {}))
        return error;
    transaction = mNext++;
    mChanges[transaction];
    return success;
}

DisplayConfiguration::Error
FakeDisplayConfiguration::configureMirrorOfDisplay(Transaction transaction, Display display,
                                                   Display master)
{
    const auto scripted = note("configure", {transaction, display, master});
    const auto change = mChanges.find(transaction);
    if (change == mChanges.end())
        return invalidContext;
    const bool isKnown = find(display) != nullptr && (master == 0 || find(master) != nullptr);
    const auto error = scripted != success || isKnown ? scripted : illegalArgument;
    if (error == success)
        change->second.steps.push_back({display, master});
    else if (change->second.error == success)
        change->second.error = error;
    return error;
}

DisplayConfiguration::Error FakeDisplayConfiguration::completeConfiguration(Transaction transaction,
                                                                            std::uint32_t option)
{
    const auto scripted = note("complete", {transaction, option});
    const auto found = mChanges.find(transaction);
    if (found == mChanges.end())
        return scripted != success ? scripted : invalidContext;
    const auto change = found->second;
    mChanges.erase(found);
    const auto error = scripted != success ? scripted : change.error;
    if (error == success) {
        for (const auto& step : change.steps)
            apply(step);
    }
    return error;
}

void FakeDisplayConfiguration::apply(const Step& step)
{
    Shown& shown = *find(step.display);
    if (step.master != 0) {
        shown.place = find(step.master)->place;
        return;
    }
    for (auto& each : mDisplays) {
        if (each.place == shown.place && each.display != shown.display)
            each.place = freePlace();
    }
}

int FakeDisplayConfiguration::freePlace() const
{
    int place = 0;
    for (const auto& each : mDisplays)
        place = std::max(place, each.place + 1);
    return place;
}

} // namespace farview
