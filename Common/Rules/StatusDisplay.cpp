#include "Common/Rules/StatusDisplay.h"

namespace farview
{
namespace
{

constexpr const char* driverSentence = "Driver not installed.";
// Two blanks after the full stop: the text is the key of its translations.
constexpr const char* driverInstructions =
    "Driver not installed.  Please run the installer and restart your machine when requested to do "
    "so.";
constexpr const char* graphicsCardInstructions =
    "Driver not installed.\n\n"
    "In Lion, the NVIDIA GeForce video driver on this computer is not compatible with Farview. The "
    "Farview drivers are installed but will be disabled until the video driver is fixed.\n\n"
    "Please visit %@ for more information.";

StatusDisplay driverMissing(bool graphicsCardCase)
{
    return {"Error", driverSentence, PopUpDisplay::disabled,
            graphicsCardCase ? graphicsCardInstructions : driverInstructions, true};
}

void setStatusTexts(StatusDisplay& display, long currentState)
{
    switch (currentState) {
    case 0:
        display.word = "Off";
        display.sentence = "Farview is currently turned off. Turn it on to choose a device as a "
                           "virtual screen.";
        break;
    case 1:
        display.word = "On";
        display.sentence = "Farview is currently on. Choose a device below to be a virtual screen.";
        break;
    case 2:
        display.word = "Error";
        display.sentence = "Farview is currently unable to perform as a screen extender. An "
                           "unknown error has occurred.";
        break;
    default:
        break;
    }
}

PopUpDisplay popUpDisplay(const StatusInputs& inputs)
{
    if (inputs.currentState == 0)
        return PopUpDisplay::disabledOffTitle;
    if (!inputs.anyDeviceListed && !inputs.connectedByAddress)
        return PopUpDisplay::menu;
    return PopUpDisplay::menuAndSelection;
}

} // namespace

StatusDisplay statusDisplay(const StatusInputs& inputs)
{
    if (!inputs.driverInstalled)
        return driverMissing(inputs.graphicsCardCase);
    StatusDisplay display;
    setStatusTexts(display, inputs.currentState);
    display.popUp = popUpDisplay(inputs);
    if (!inputs.errorOnShow) {
        display.instructions = instructionsText;
        display.warningShown = false;
    }
    return display;
}

bool waitsForDevices(const DiscoveryHintInputs& inputs)
{
    return inputs.on && !inputs.anyDeviceListed && !inputs.connected;
}

std::string discoveryHint(const DiscoveryHintInputs& inputs)
{
    if (!waitsForDevices(inputs))
        return {};
    switch (inputs.condition) {
    case DiscoveryCondition::refused:
        return "Devices cannot be found: the discovery daemon of this computer cannot be reached. "
               "Restart avahi-daemon, or use \"Connect To Other...\".";
    case DiscoveryCondition::unavailable:
        return "Devices cannot be found: this computer is not on a network. Connect to one, then "
               "open this panel again.";
    case DiscoveryCondition::starting:
        return "Looking for devices…";
    case DiscoveryCondition::working:
        break;
    }
    return inputs.inVain ? "No device yet? Start farview-device on another computer. If it runs "
                           "there, a firewall may be in the way: UDP port 5353 (mDNS) must be let "
                           "through."
                         : "No device yet? Start farview-device on another computer.";
}

std::optional<int> switchStateForCurrentState(long currentState)
{
    if (currentState == 1 || currentState == 2)
        return 1;
    if (currentState == 0)
        return 0;
    return std::nullopt;
}

} // namespace farview
