#pragma once

#include "Platform/Types/DiscoveryCondition.h"

#include <optional>
#include <string>

namespace farview
{

/// What the display depends on.
struct StatusInputs {
    bool driverInstalled = false;
    long currentState = 0; ///< as stored: 0 off, 1 on, 2 trouble
    bool anyDeviceListed = false;
    bool connectedByAddress = false;
    bool errorOnShow = false;      ///< a connection error must stay readable a while longer
    bool graphicsCardCase = false; ///< the driver is missing because of the graphics card
};

/// What becomes of the device menu.
enum class PopUpDisplay {
    disabled,         ///< as it is, but not to be used
    disabledOffTitle, ///< the same, and its title says that the system is off
    menu,             ///< a new menu; whether it can be opened and what it shows stay
    menuAndSelection, ///< a new menu, open to use, with the choice in force selected
};

/// Everything that the main tab shows. Texts are the English ones, the keys of their translations;
/// what is nothing stays as it is. A "%@" in the instructions is the place of the support address.
struct StatusDisplay {
    std::string word;
    std::string sentence;
    PopUpDisplay popUp = PopUpDisplay::disabled;
    std::optional<std::string> instructions;
    std::optional<bool> warningShown;

    bool operator==(const StatusDisplay&) const = default;
};

StatusDisplay statusDisplay(const StatusInputs& inputs);

inline constexpr const char* popUpTitleWhenOff = "Farview: Off";
inline constexpr const char* instructionsText =
    "When you select a device, the screen will go blue as the system adds a new screen.";
inline constexpr const char* connectionErrorText =
    "There was a problem connecting to a device.  Farview could not talk to the screen device.  "
    "Disable the Firewall in System Preferences->Security and try again.  Please contact "
    "technical support for more information.";

/// What the line below the device menu says; empty for nothing.
struct DiscoveryHintInputs {
    bool on = false; ///< the system is in use and its driver is there
    bool anyDeviceListed = false;
    bool connected = false; ///< to whatever device
    DiscoveryCondition condition = DiscoveryCondition::working;
    bool inVain = false; ///< nothing was found for so long that something may be in the way
};
std::string discoveryHint(const DiscoveryHintInputs& inputs);
/// Whether the user waits for a first device to show up.
bool waitsForDevices(const DiscoveryHintInputs& inputs);

/// How the switch follows the stored state: on, off, or (nothing) left as it is.
std::optional<int> switchStateForCurrentState(long currentState);

} // namespace farview
