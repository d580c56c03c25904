#pragma once

#include "Platform/Types/PropertyList.h"

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace farview
{

/// A device on the network, as auto-connection sees it.
struct AnnouncedDevice {
    std::string name;
    bool busy = false;      ///< in use by another computer
    bool reachable = false; ///< its host and its addresses are known
};

/// The device to connect to now, as its index in `announced`: the first of the chosen names (in the
/// user's order) that is announced, reachable, not busy and not held off. Of two devices of one
/// name the first that fits. Names that are no texts mean no device. Linear in all three.
std::optional<std::size_t> autoConnectChoice(const PropertyList::Array& chosen,
                                             const std::vector<AnnouncedDevice>& announced,
                                             const std::unordered_set<std::string>& heldOff);

/// The names that are in the list `after` and were not in the list `before`, each once, in their
/// order: what the user has just ticked. Linear in both.
std::vector<std::string> newlyChosenNames(const PropertyList::Array& before,
                                          const PropertyList::Array& after);

} // namespace farview
