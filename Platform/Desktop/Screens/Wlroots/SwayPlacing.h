#pragma once

#include "Platform/Desktop/Screens/Wlroots/SwayTree.h"

#include <map>

namespace farview
{

// What is said to sway about the windows of a monitor of ours: commands, in their order. Where
// tiled windows are within their workspace is sway's affair.

using SwayCommands = std::vector<std::string>;
/// Where windows are that are not on the monitor.
using SwayHomes = std::map<std::int64_t, SwayStand>;

/// Writes on the windows of the monitor where they came from, and removes that from those that have
/// left it.
SwayCommands notesFor(const SwayTree& tree, const std::string& output, std::uint32_t monitor,
                      const SwayHomes& homes);

/// Takes the windows of an output, and the focus, to where they came from; those that have no home
/// to the first of the other outputs. Nothing when there is no other one.
SwayCommands takenBack(const SwayTree& tree, const std::string& output);

/// Takes windows that were on the monitor when it went, and that nobody has moved since, to it.
SwayCommands broughtTo(const SwayTree& tree, const std::string& output, std::uint32_t monitor);

} // namespace farview
