#include "Source/FVEPreferencePane.h"

#include "Common/FVEPreferences.h"
#include "Common/Rules/FilledText.h"
#include "Platform/Platform.h"
#include "Source/FurtherDevicesTable.h"

using farview::PopUpDisplay;
using farview::Represented;
using farview::SelectedEntry;

namespace
{

// Devices that are there are found within two seconds.
constexpr farview::Duration patience{10.0};

} // namespace

void FVEPreferencePane::updateUI()
{
    auto& preferences = FVEPreferences::sharedAppPrefs();
    farview::StatusInputs inputs;
    inputs.driverInstalled = videoDriverInstalled();
    inputs.currentState = preferences.currentState();
    inputs.anyDeviceListed = !listedServices().empty();
    inputs.connectedByAddress = connectedToOtherDevice();
    inputs.errorOnShow = connectErrorMessageTimer().lock() != nullptr;
    inputs.graphicsCardCase =
        !inputs.driverInstalled && needsWarningMessageFor9400_9600_And_LionProblem();
    const auto display = farview::statusDisplay(inputs);

    if (inputs.driverInstalled)
        menuExtraCheckbox()->setState(preferences.showInMenuBar() ? 1 : 0);
    else
        showDriverMissing();
    statusLabel()->setStringValue(localized(display.word));
    statusExplanationLabel()->setStringValue(localized(display.sentence));
    showPopUp(display.popUp);
    if (inputs.driverInstalled) {
        enableTouchDisplay()->setState(preferences.enableTouchDisplay() ? 1 : 0);
        enableSelectedEntry();
    }
    showInstructions(display);
    updateDeviceHint();
    showPairing();
}

void FVEPreferencePane::showPopUp(PopUpDisplay display)
{
    auto& popUp = *virtualScreenSelectionPopup();
    switch (display) {
    case PopUpDisplay::disabled:
        popUp.setEnabled(false);
        break;
    case PopUpDisplay::disabledOffTitle:
        popUp.setEnabled(false);
        popUp.setTitle(localized(farview::popUpTitleWhenOff));
        break;
    case PopUpDisplay::menu:
        popUp.setMenu(createVirtualScreensMenu());
        break;
    case PopUpDisplay::menuAndSelection:
        popUp.setEnabled(true);
        popUp.setMenu(createVirtualScreensMenu());
        selectEntryInForce();
        break;
    }
}

void FVEPreferencePane::selectEntryInForce()
{
    auto& popUp = *virtualScreenSelectionPopup();
    int index = -1;
    switch (farview::selectedEntry(selectedNetService() != nullptr, connectedToOtherDevice())) {
    case SelectedEntry::device:
        index = popUp.indexOfItemWithRepresentedObject(
            std::shared_ptr<farview::Object>(selectedNetService()));
        break;
    case SelectedEntry::address:
        if (const auto& address = connectedToOtherDeviceIPString())
            index = popUp.indexOfItemWithRepresentedObject(Represented(*address));
        break;
    case SelectedEntry::noDevice:
        index = popUp.indexOfItemWithTag(farview::noDeviceEntryTag);
        break;
    }
    popUp.selectItemAtIndex(index);
}

void FVEPreferencePane::enableSelectedEntry()
{
    // The choice in force can be chosen whatever the menu's own rule says, also a busy device.
    const auto item = virtualScreenSelectionPopup()->selectedItem();
    if (!item)
        return;
    item->target = weak_from_this();
    item->enabled = true;
    virtualScreenSelectionPopup()->itemChanged();
}

std::string FVEPreferencePane::instructionsText(const std::string& text) const
{
    if (videoDriverInstalled())
        return localized(text);
    return farview::filledText(localized(text), farview::textOrNull(infoText("QLNSupportURL")));
}

void FVEPreferencePane::showInstructions(const farview::StatusDisplay& display)
{
    if (display.instructions)
        instructionsLabel()->setStringValue(instructionsText(*display.instructions));
    if (display.warningShown)
        warningImage()->setHidden(!*display.warningShown);
    if (display.instructions)
        showConnectionHelp(false);
    if (!videoDriverInstalled())
        reinstallDriversButton()->setHidden(false);
}

void FVEPreferencePane::showDriverMissing()
{
    offTextButton()->setEnabled(false);
    onOffSwitch()->setEnabled(false);
    onTextButton()->setEnabled(false);
    offTextButton()->setHidden(true);
    onOffSwitch()->setHidden(true);
    onTextButton()->setHidden(true);
    autoConnect()->setEnabled(false);
    menuExtraCheckbox()->setEnabled(false);
    enableTouchDisplay()->setEnabled(false);
}

void FVEPreferencePane::updateDeviceHint()
{
    farview::DiscoveryHintInputs inputs;
    inputs.on = videoDriverInstalled() && FVEPreferences::sharedAppPrefs().currentState() != 0;
    inputs.anyDeviceListed = !listedServices().empty();
    inputs.connected = selectedNetService() || connectedToOtherDevice();
    inputs.condition = mPlatform.discovery->condition();
    inputs.inVain = searchesInVain(farview::waitsForDevices(inputs));
    const bool isConnected = inputs.on && inputs.connected;
    deviceHintLabel()->setStringValue(isConnected ? connectedText() : searchText(inputs));
    showScreen(inputs.on);
    mFurtherDevices->show(inputs.on);
}

/// What helps to find a device, and what is known of its picture before one is tried.
std::string FVEPreferencePane::searchText(const farview::DiscoveryHintInputs& inputs)
{
    const auto& report = connection().screen();
    auto text = localized(farview::discoveryHint(inputs));
    if (inputs.on && report && report->isOutlook())
        text += screenText();
    return text.starts_with('\n') ? text.substr(1) : text;
}

std::optional<std::string> FVEPreferencePane::connectedName() const
{
    return selectedNetService() ? std::optional(selectedNetService()->name())
                                : connectedToOtherDeviceIPString();
}

std::string FVEPreferencePane::connectedText()
{
    const auto name = connectedName();
    return name && !name->empty()
               ? farview::filledText(localized("Connected to %@"), *name) + screenText()
               : std::string{};
}

bool FVEPreferencePane::searchesInVain(bool waits)
{
    const auto now = mPlatform.runLoop->now();
    if (!waits)
        mSearchBegan.reset();
    else if (!mSearchBegan)
        mSearchBegan = now;
    return mSearchBegan && now - *mSearchBegan >= patience;
}
