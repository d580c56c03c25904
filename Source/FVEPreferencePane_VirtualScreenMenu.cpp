#include "Source/FVEPreferencePane.h"

#include "Common/Bonjour/DeviceState.h"
#include "Common/FVEPreferences.h"
#include "Platform/Platform.h"
#include "Source/FVEConnectToOtherSheetController.h"

#include <utility>

using farview::ListedDevice;
using farview::MenuEntry;
using farview::MenuEntryKind;
using farview::MenuItem;
using farview::NetService;
using farview::Object;

namespace
{

constexpr farview::Duration connectErrorCheckDelay{15.0};

/// The device that an entry stands for; null for any other entry.
std::shared_ptr<NetService> serviceOf(const MenuItem& item)
{
    const auto* object = std::get_if<std::shared_ptr<Object>>(&item.representedObject);
    return object ? std::dynamic_pointer_cast<NetService>(*object) : nullptr;
}

std::int32_t portOf(const NetService& service)
{
    const auto endpoints = service.endpoints();
    return endpoints.empty() ? kMainDataTrafficPort : endpoints.front().port;
}

} // namespace

const QLNBonjourBrowser::ServiceList& FVEPreferencePaneProperties::listedServices() const
{
    static const QLNBonjourBrowser::ServiceList none;
    return bonjourBrowser() ? bonjourBrowser()->activeServiceList() : none;
}

bool FVEPreferencePane::determineIfNoDevicesSelectedEnabled()
{
    auto& preferences = FVEPreferences::sharedAppPrefs();
    const bool autoConnects = preferences.autoConnectOption();
    if (connectedToOtherDevice() || !autoConnects || !selectedNetService())
        return true;
    return farview::noDeviceEntryEnabled(autoConnects, connectedToOtherDevice(),
                                         &selectedNetService()->name(),
                                         preferences.autoConnectDevices());
}

farview::DeviceMenuInputs FVEPreferencePane::deviceMenuInputs()
{
    farview::DeviceMenuInputs inputs;
    inputs.devices.reserve(listedServices().size());
    for (const auto& service : listedServices())
        inputs.devices.push_back(ListedDevice{service->name(), farview::isDeviceInUse(*service),
                                              service == selectedNetService()});
    inputs.noDeviceEntryEnabled = determineIfNoDevicesSelectedEnabled();
    inputs.connectedByAddress = connectedToOtherDevice();
    inputs.address = connectedToOtherDeviceIPString();
    if (selectedNetService())
        inputs.selectedName = selectedNetService()->name();
    return inputs;
}

std::shared_ptr<farview::Menu> FVEPreferencePane::createVirtualScreensMenu()
{
    auto menu = std::make_shared<farview::Menu>();
    for (const auto& entry : farview::deviceMenuEntries(deviceMenuInputs()))
        menu->insertItem(menuItem(entry), menu->numberOfItems());
    return menu;
}

std::shared_ptr<MenuItem> FVEPreferencePane::menuItem(const MenuEntry& entry)
{
    auto item = std::make_shared<MenuItem>();
    item->title = entry.title;
    item->enabled = entry.enabled;
    item->state = entry.checked ? 1 : 0;
    if (entry.hasTarget)
        item->target = weak_from_this();
    switch (entry.kind) {
    case MenuEntryKind::noDevice:
        item->title = localized("No device selected");
        item->action = {"takeNoVirtualScreenFrom:"};
        item->tag = farview::noDeviceEntryTag;
        break;
    case MenuEntryKind::device:
        item->action = {"takeVirtualScreenFrom:"};
        item->representedObject = std::shared_ptr<Object>(listedServices()[entry.device]);
        if (entry.inUse)
            item->note = localized("In use");
        break;
    case MenuEntryKind::address:
        item->action = {"takeVirtualScreenFrom:"};
        item->representedObject = entry.title;
        break;
    case MenuEntryKind::connectToOther:
        item->title = localized("Connect To Other...");
        item->action = {"takeVirtualOtherDeviceScreenFrom:"};
        break;
    case MenuEntryKind::inBackground:
        item->title += localized(" (in background)");
        break;
    }
    return item;
}

void FVEPreferencePane::setSelectedNetService(std::shared_ptr<NetService> service)
{
    if (service == mSelectedNetService)
        return;
    mSelectedNetService = std::move(service);
    if (mSelectedNetService)
        FVEPreferences::sharedAppPrefs().setCurrentVirtualScreenDevice(
            mSelectedNetService->hostName().value_or(std::string{}));
}

void FVEPreferencePane::takeVirtualScreenFrom(Object* sender)
{
    const auto* item = dynamic_cast<MenuItem*>(sender);
    if (!item)
        return;
    // An address entry stands for the connection in force, or is stale: nothing to ask for.
    const auto service = serviceOf(*item);
    if (!service || (selectedNetService() && service->isEqual(*selectedNetService())))
        return;
    requestConnection(*service);
}

void FVEPreferencePane::requestConnection(const NetService& service)
{
    mRequestedPort = portOf(service);
    clearConnectionError();
    showProgressIndicator();
    setConnectErrorCheckTimer(
        scheduleOnce(connectErrorCheckDelay, [this] { checkForConnectionError(nullptr); }));
    // Without a host name there is nobody to name; the check tells the user when its time is over.
    connection().forgetRequest();
    if (const auto hostName = service.hostName())
        connection().connectToHost(*hostName);
}

void FVEPreferencePane::takeNoVirtualScreenFrom(Object* /*sender*/)
{
    setSelectedNetService(nullptr);
    setConnectedToOtherDeviceIPString(std::nullopt);
    setConnectedToOtherDevice(false);
    FVEPreferences::sharedAppPrefs().setCurrentVirtualScreenDevice("");
    connection().chooseNone();
    updateUI();
}

void FVEPreferencePane::takeVirtualOtherDeviceScreenFrom(Object* sender)
{
    if (dynamic_cast<MenuItem*>(sender) && connectToOtherSheetController())
        connectToOtherSheetController()->showConnectToOtherSheet(this);
}

void FVEPreferencePane::showDevices(Object* sender) { tabView()->selectFirstTabViewItem(sender); }

void FVEPreferencePane::virtualScreensDidChange(const farview::Notification& /*notification*/)
{
    connection().query();
    updateUI();
    buildDeviceList();
    writeDeviceList();
}

void FVEPreferencePane::virtualScreensDidRemoveService(
    const farview::Notification& /*notification*/)
{
    updateUI();
    buildDeviceList();
    writeDeviceList();
}

void FVEPreferencePane::netServiceTXTRecordChanged(const farview::Notification& /*notification*/)
{
    updateUI();
}
