#include "Platform/Desktop/Screens/Wlroots/SwayPlacing.h"

#include "Platform/Desktop/Screens/Wlroots/SwayConnection.h"

#include <algorithm>

namespace farview
{
namespace
{

PixelPoint sum(PixelPoint left, PixelPoint right)
{
    return pixelPoint(left.x + right.x, left.y + right.y);
}

PixelPoint difference(PixelPoint left, PixelPoint right)
{
    return pixelPoint(left.x - right.x, left.y - right.y);
}

std::string to(const SwayWindow& window, const std::string& command)
{
    return "[con_id=" + std::to_string(window.id) + "] " + command;
}

void write(SwayCommands& commands, const SwayWindow& window, const std::optional<SwayNote>& note)
{
    if (!window.mark.empty())
        commands.push_back(to(window, "unmark " + swayQuoted(window.mark)));
    if (note)
        commands.push_back(to(window, "mark --add " + swayQuoted(swayMark(window.id, *note))));
}

/// sway moves no window that covers its screen.
void move(SwayCommands& commands, const SwayWindow& window, const std::string& where,
          const SwayStand& stand)
{
    commands.push_back(to(window, "fullscreen disable"));
    commands.push_back(to(window, "move " + where));
    commands.push_back(to(window, stand.isFloating ? "floating enable" : "floating disable"));
    if (stand.isFloating)
        commands.push_back(to(window, "move absolute position " + std::to_string(stand.corner.x) +
                                          " " + std::to_string(stand.corner.y)));
    if (stand.isFull)
        commands.push_back(to(window, "fullscreen enable"));
}

const SwayOutput* find(const SwayTree& tree, const std::string& output)
{
    const auto found = std::find_if(tree.outputs.begin(), tree.outputs.end(),
                                    [&](const auto& each) { return each.name == output; });
    return found == tree.outputs.end() ? nullptr : &*found;
}

const SwayOutput* otherThan(const SwayTree& tree, const std::string& output)
{
    const auto found = std::find_if(tree.outputs.begin(), tree.outputs.end(),
                                    [&](const auto& each) { return each.name != output; });
    return found == tree.outputs.end() ? nullptr : &*found;
}

SwayStand onMonitor(const SwayTree& tree, const SwayWindow& window)
{
    auto stand = window.stand;
    if (const auto* output = find(tree, window.output))
        stand.corner = difference(stand.corner, output->corner);
    return stand;
}

/// Tiled windows have no place of their own.
bool isWhereItWas(const SwayStand& now, const SwayStand& before)
{
    return now.workspace == before.workspace && now.isFloating == before.isFloating;
}

void takeBack(SwayCommands& commands, const SwayTree& tree, const SwayWindow& window,
              const SwayOutput& other)
{
    const auto home = window.note ? window.note->home : std::nullopt;
    if (home) {
        move(commands, window,
             "--no-auto-back-and-forth container to workspace " + swayQuoted(home->workspace),
             *home);
    } else {
        commands.push_back(to(window, "move container to output " + swayQuoted(other.name)));
    }
    if (!window.note)
        return;
    auto note = *window.note;
    note.isThere = false;
    note.there = onMonitor(tree, window);
    if (!home) {
        note.home = window.stand;
        note.home->workspace = other.workspace;
    }
    write(commands, window, note);
}

} // namespace

SwayCommands notesFor(const SwayTree& tree, const std::string& output, std::uint32_t monitor,
                      const SwayHomes& homes)
{
    SwayCommands commands;
    for (const auto& window : tree.windows) {
        const bool isKnown = window.note && window.note->isThere && window.note->monitor == monitor;
        if (window.output != output) {
            if (isKnown)
                write(commands, window, std::nullopt);
            continue;
        }
        SwayNote note{monitor, true, onMonitor(tree, window), std::nullopt};
        const auto home = homes.find(window.id);
        if (isKnown)
            note.home = window.note->home;
        else if (home != homes.end())
            note.home = home->second;
        if (note != window.note)
            write(commands, window, note);
    }
    return commands;
}

SwayCommands takenBack(const SwayTree& tree, const std::string& output)
{
    SwayCommands commands;
    const auto* other = otherThan(tree, output);
    if (!other)
        return commands;
    for (const auto& window : tree.windows) {
        if (window.output == output)
            takeBack(commands, tree, window, *other);
    }
    if (tree.focusedOutput == output)
        commands.push_back("focus output " + swayQuoted(other->name));
    return commands;
}

SwayCommands broughtTo(const SwayTree& tree, const std::string& output, std::uint32_t monitor)
{
    SwayCommands commands;
    const auto* ours = find(tree, output);
    if (!ours)
        return commands;
    for (const auto& window : tree.windows) {
        const auto& note = window.note;
        if (!note || note->isThere || note->monitor != monitor || !note->home ||
            !isWhereItWas(window.stand, *note->home))
            continue;
        auto there = note->there;
        there.corner = sum(there.corner, ours->corner);
        move(commands, window, "container to output " + swayQuoted(output), there);
        write(commands, window, SwayNote{monitor, true, note->there, window.stand});
    }
    return commands;
}

} // namespace farview
