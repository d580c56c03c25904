#include "Common/Rules/DeviceMenu.h"

#include <algorithm>

namespace farview
{
namespace
{

MenuEntry noDeviceEntry(bool enabled)
{
    return {MenuEntryKind::noDevice, {}, enabled, enabled, false, 0};
}

MenuEntry deviceEntry(const ListedDevice& device, std::size_t index)
{
    // The device that we are connected to is busy as well: with us.
    const bool inUse = device.busy && !device.selected;
    return {MenuEntryKind::device, device.name, !device.busy, !device.busy, false, index, inUse};
}

/// It has a target and is disabled all the same: menus enable themselves, so it can be chosen.
MenuEntry connectToOtherEntry()
{
    return {MenuEntryKind::connectToOther, {}, true, false, false, 0};
}

bool showsAddress(const DeviceMenuInputs& inputs)
{
    return inputs.connectedByAddress && inputs.address && !inputs.address->empty();
}

} // namespace

std::vector<MenuEntry> deviceMenuEntries(const DeviceMenuInputs& inputs)
{
    std::vector<MenuEntry> entries;
    entries.reserve(inputs.devices.size() + 3);
    entries.push_back(noDeviceEntry(inputs.noDeviceEntryEnabled));
    for (std::size_t index = 0; index < inputs.devices.size(); ++index)
        entries.push_back(deviceEntry(inputs.devices[index], index));

    const bool listed = std::any_of(inputs.devices.begin(), inputs.devices.end(),
                                    [](const ListedDevice& device) { return device.selected; });
    if (!listed && showsAddress(inputs))
        entries.push_back({MenuEntryKind::address, *inputs.address, true, true, true, 0});
    entries.push_back(connectToOtherEntry());
    // A connection by an empty address has no name to show: no entry.
    if (!listed && !showsAddress(inputs) && inputs.selectedName)
        entries.push_back(
            {MenuEntryKind::inBackground, *inputs.selectedName, false, false, true, 0});
    return entries;
}

SelectedEntry selectedEntry(bool deviceSelected, bool connectedByAddress)
{
    if (deviceSelected)
        return SelectedEntry::device;
    return connectedByAddress ? SelectedEntry::address : SelectedEntry::noDevice;
}

} // namespace farview
