#pragma once

#include "Common/Rules/ScreenReport.h"

#include <cstddef>
#include <string>
#include <vector>

namespace farview
{

/// A device that is used beside the one that the menu chooses, as the server tells the others.
struct FurtherDevice {
    enum class State {
        connecting, ///< on its way, or waiting until the device is there again
        connected,
        failed, ///< it was asked for and could not be reached, or was lost; nobody tries again
    };

    std::string hostName; ///< what it is asked for by
    std::string name;     ///< its service's name, as the user knows it. Foreign
    State state = State::connecting;
    ScreenReport screen = {}; ///< while it is connected
    std::string key = {};     ///< by which `PairedPeers` knows it, while it is connected

    bool operator==(const FurtherDevice&) const = default;
};

/// How many devices are used at once at most, beside the first.
inline constexpr std::size_t mostFurtherDevices = 7;

/// The list as it travels: a line for each device.
std::string textOfFurtherDevices(const std::vector<FurtherDevice>& devices);
/// Of a foreign text; lines that cannot be read, or that are beyond the limit, are left out.
std::vector<FurtherDevice> furtherDevices(const std::string* text);

} // namespace farview
