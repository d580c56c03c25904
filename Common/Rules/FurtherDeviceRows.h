#pragma once

#include "Common/Rules/FilledText.h"
#include "Common/Rules/FurtherDevices.h"

#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// A device that is used beside the one that the menu chooses, or may be, as the user is offered
/// it. The state is in the user's language, the name is foreign.
struct FurtherDeviceRow {
    std::string hostName;
    std::string name;
    bool isUsed = false; ///< it is connected or being connected: the user can have that end
    std::string state = {};
    std::string trouble = {}; ///< why it shows no picture; empty for most
    std::string key = {};     ///< while it is connected
    /// Whether it may type here; nothing where that is not for the user to say now.
    std::optional<bool> mayType = std::nullopt;

    bool operator==(const FurtherDeviceRow&) const = default;
};

/// What the rows depend on.
struct FurtherDeviceInputs {
    struct Seen {
        std::string hostName;
        std::string name;
        bool busy = false; ///< in use by another computer, or by this one
    };

    std::vector<Seen> inSight = {};
    bool isConnected = false;             ///< to the first device, beside which others may be used
    std::string firstHostName = {};       ///< of that device; empty by address
    std::vector<FurtherDevice> used = {}; ///< as the server tells
};

/// The devices in sight that are used or free, in their order, then those used out of sight. None
/// is offered while no device is chosen, but what is used can always be left.
std::vector<FurtherDeviceRow> furtherDeviceRows(const FurtherDeviceInputs& inputs,
                                                const Localize& localized);

/// Who uses the keyboard of a device here, a line for each: first the device of that name, if its
/// report says so, then the further ones. Empty when nobody does.
std::string typingText(const std::string& firstName, const std::optional<ScreenReport>& screen,
                       const std::vector<FurtherDevice>& used, const Localize& localized);

} // namespace farview
