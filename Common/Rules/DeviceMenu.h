#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// A device that can be seen on the network.
struct ListedDevice {
    std::string name;
    bool busy = false;     ///< in use by another computer
    bool selected = false; ///< the very device that is connected, not merely one of its name
};

/// What the device menu depends on.
struct DeviceMenuInputs {
    std::vector<ListedDevice> devices = {};
    bool noDeviceEntryEnabled = true;
    bool connectedByAddress = false;
    std::optional<std::string> address = {};      ///< of the connection by address
    std::optional<std::string> selectedName = {}; ///< of the connected device, listed or not
};

enum class MenuEntryKind {
    noDevice,
    device,         ///< `device` is its index in the list
    address,        ///< the connection by address
    connectToOther, ///< opens the sheet
    inBackground,   ///< the connected device, which the list does not hold
};

/// One entry, top to bottom. Titles of `noDevice` and `connectToOther`, and what follows the name
/// of `inBackground`, are texts of the program and not set here.
struct MenuEntry {
    MenuEntryKind kind = MenuEntryKind::noDevice;
    std::string title;
    bool hasTarget = false;
    bool enabled = false;
    bool checked = false;
    std::size_t device = 0;
    bool inUse = false; ///< by another computer, which the entry says beside its title

    bool operator==(const MenuEntry&) const = default;
};

/// The whole menu. Linear in the number of devices.
std::vector<MenuEntry> deviceMenuEntries(const DeviceMenuInputs& inputs);

/// Which entry shows the choice in force.
enum class SelectedEntry { device, address, noDevice };
SelectedEntry selectedEntry(bool deviceSelected, bool connectedByAddress);

/// Marks the entry for choosing no device.
inline constexpr int noDeviceEntryTag = 2112;

} // namespace farview
