#include "Applications/FarviewStatusItem/StatusMenu.h"

#include "Common/Bonjour/DeviceState.h"
#include "Common/Rules/AutoConnectRows.h"
#include "Common/Rules/FilledText.h"
#include "Common/Rules/PairingTexts.h"
#include "Common/Rules/ScreenTexts.h"
#include "Common/Rules/StatusDisplay.h"

#include <sstream>

namespace farview
{
namespace
{

void addInertLine(Menu& menu, const std::string& title)
{
    auto item = std::make_shared<MenuItem>();
    item->title = title;
    menu.insertItem(item, menu.numberOfItems());
}

void addInertLines(Menu& menu, const std::string& text)
{
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        addInertLine(menu, line);
}

void addSeparator(Menu& menu) { addInertLine(menu, {}); }

} // namespace

bool isSeparator(const MenuItem& item) { return item.title.empty() && item.action.isEmpty(); }

void StatusMenu::refresh()
{
    findSelectedService();
    mDisplay = makeDisplay();
    mChanged();
}

StatusItemDisplay StatusMenu::makeDisplay()
{
    const long state = mServices.preferences.currentState();
    const bool on = mDriverInstalled && switchStateForCurrentState(state).value_or(0) == 1;
    StatusItemDisplay display;
    const bool failed = mConnectFailed || isFailure(mConnection.pairing().state);
    display.icon = statusIcon({mDriverInstalled, state, isConnected(), failed, isAsked()});
    display.headline = headline(display.icon);
    const std::string whoTypes = typing(on);
    display.sentence = whoTypes.empty() || isAsked() ? sentence(state) : whoTypes;
    auto menu = std::make_shared<Menu>();
    addInertLine(*menu, display.headline);
    addInertLines(*menu, detail());
    addInertLines(*menu, whoTypes);
    addAnswers(*menu);
    if (mDriverInstalled)
        addItem(*menu, on ? "Turn Farview Off" : "Turn Farview On",
                on ? Selector{"turnOff:"} : Selector{"turnOn:"});
    addSeparator(*menu);
    addDevices(*menu, on);
    addFurtherDevices(*menu, on);
    addSeparator(*menu);
    addItem(*menu, "Open Farview Preferences…", {"openPreferences:"});
    addItem(*menu, "Quit", {"quit:"});
    display.menu = menu;
    return display;
}

std::string StatusMenu::headline(StatusIcon icon) const
{
    switch (icon) {
    case StatusIcon::off:
        return localized(popUpTitleWhenOff);
    case StatusIcon::on:
        return localized("Farview: On");
    case StatusIcon::connected:
        return filledText(localized("Connected to %@"), deviceName());
    case StatusIcon::question:
        return pairingText();
    case StatusIcon::trouble:
        break;
    }
    return localized("Farview: Error");
}

std::string StatusMenu::sentence(long currentState) const
{
    const auto pairing = mConnection.pairing().state;
    if (isAsked())
        return localized(pairingTexts(pairing).remedy);
    if (mDriverInstalled && mConnectFailed && !isFailure(pairing) && currentState != 0)
        return localized(connectionErrorText);
    if (const auto text = detail(); !text.empty())
        return text;
    StatusInputs inputs;
    inputs.driverInstalled = mDriverInstalled;
    inputs.currentState = currentState;
    return localized(statusDisplay(inputs).sentence);
}

/// Why a device is not trusted, else what became of the connected device's monitor; empty while
/// there is nothing to say, and while the headline asks.
std::string StatusMenu::detail() const
{
    if (isAsked())
        return {};
    if (mConnection.pairing().state != PairingReport::State::none)
        return pairingText();
    const auto& report = mConnection.screen();
    if (!report || !isConnected())
        return {};
    return screenSentence(*report, localize());
}

std::string StatusMenu::pairingText() const
{
    return pairingSentence(mConnection.pairing(), localize());
}

std::string StatusMenu::deviceName() const
{
    if (mConnection.isByAddress())
        return mConnection.address().value_or(std::string{});
    return mSelected ? mSelected->name() : mReportedHostName;
}

/// The answers to the headline's question, or the way to what can be done.
void StatusMenu::addAnswers(Menu& menu)
{
    const auto& pairing = mConnection.pairing();
    const auto& texts = pairingTexts(pairing.state);
    if (isAsked()) {
        if (*texts.yes)
            addItem(menu, texts.yes, {"confirmDevice:"})->representedObject = pairing.digits;
        addItem(menu, texts.no, {"refuseDevice:"})->representedObject = pairing.digits;
    } else if (pairing.state == PairingReport::State::changed) {
        addItem(menu, "What to Do…", {"openPreferences:"});
    } else {
        return;
    }
    addSeparator(menu);
}

void StatusMenu::addDevices(Menu& menu, bool on)
{
    for (const auto& entry : deviceMenuEntries(deviceMenuInputs())) {
        // Typing an address needs the panel's sheet.
        if (entry.kind != MenuEntryKind::connectToOther)
            menu.insertItem(deviceItem(entry, on), menu.numberOfItems());
    }
}

DeviceMenuInputs StatusMenu::deviceMenuInputs()
{
    DeviceMenuInputs inputs;
    for (const auto& service : mBrowser->activeServiceList())
        inputs.devices.push_back({service->name(), isDeviceInUse(*service), service == mSelected});
    auto& preferences = mServices.preferences;
    inputs.connectedByAddress = mConnection.isByAddress();
    inputs.address = mConnection.address();
    if (!mReportedHostName.empty())
        inputs.selectedName = deviceName();
    inputs.noDeviceEntryEnabled = noDeviceEntryEnabled(
        preferences.autoConnectOption(), mConnection.isByAddress(),
        mSelected ? &mSelected->name() : nullptr, preferences.autoConnectDevices());
    return inputs;
}

void StatusMenu::addFurtherDevices(Menu& menu, bool on)
{
    auto devices = std::make_shared<Menu>();
    for (const auto& row : furtherDeviceRows(furtherDeviceInputs(), localize())) {
        const auto item = addItem(*devices, "", {"alsoUse:"});
        item->title = row.state.empty()
                          ? row.name
                          : filledPlaces(localized("%1$@, %2$@"), {row.name, row.state});
        item->state = row.isUsed ? 1 : 0;
        item->representedObject = row.hostName;
    }
    if (!on || devices->numberOfItems() == 0)
        return;
    addInertLine(menu, localized("Also Use"));
    menu.items().back()->submenu = devices;
}

FurtherDeviceInputs StatusMenu::furtherDeviceInputs() const
{
    FurtherDeviceInputs inputs;
    for (const auto& service : mBrowser->activeServiceList()) {
        if (const auto hostName = service->hostName())
            inputs.inSight.push_back({*hostName, service->name(), isDeviceInUse(*service)});
    }
    inputs.isConnected = isConnected();
    inputs.firstHostName = mReportedHostName;
    inputs.used = mConnection.furtherDevices();
    return inputs;
}

std::string StatusMenu::typing(bool on) const
{
    return on ? typingText(deviceName(), mConnection.screen(), mConnection.furtherDevices(),
                           localize())
              : std::string();
}

std::shared_ptr<MenuItem> StatusMenu::deviceItem(const MenuEntry& entry, bool on)
{
    auto item = std::make_shared<MenuItem>();
    item->title = entry.title;
    item->action = {"takeDevice:"};
    item->state = entry.checked || isInForce(entry) ? 1 : 0;
    if (on && entry.hasTarget)
        item->target = weak_from_this();
    if (entry.kind == MenuEntryKind::noDevice) {
        item->title = localized("No device selected");
        item->action = {"takeNoDevice:"};
        item->tag = noDeviceEntryTag;
    } else if (entry.kind == MenuEntryKind::device) {
        item->representedObject =
            std::shared_ptr<Object>(mBrowser->activeServiceList()[entry.device]);
    } else if (entry.kind == MenuEntryKind::inBackground) {
        item->title += localized(" (in background)");
    }
    return item;
}

bool StatusMenu::isInForce(const MenuEntry& entry) const
{
    const bool deviceSelected = !mReportedHostName.empty();
    switch (selectedEntry(deviceSelected, mConnection.isByAddress())) {
    case SelectedEntry::device:
        return entry.kind == MenuEntryKind::device &&
               mBrowser->activeServiceList()[entry.device] == mSelected;
    case SelectedEntry::address:
        return entry.kind == MenuEntryKind::address;
    case SelectedEntry::noDevice:
        return entry.kind == MenuEntryKind::noDevice;
    }
    return false;
}

std::shared_ptr<MenuItem> StatusMenu::addItem(Menu& menu, const char* title, Selector action)
{
    auto item = std::make_shared<MenuItem>();
    item->title = localized(title);
    item->action = action;
    item->target = weak_from_this();
    menu.insertItem(item, menu.numberOfItems());
    return item;
}

Localize StatusMenu::localize() const
{
    return [this](const std::string& text) { return localized(text); };
}

std::string StatusMenu::localized(const std::string& text) const
{
    return mServices.pane && !text.empty() ? mServices.pane->localizedString(text, "", "") : text;
}

} // namespace farview
