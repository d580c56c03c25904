#pragma once

#include <optional>
#include <string>

namespace farview
{

/// What a device is called, and where it sits among its siblings.
struct DevicePlace {
    std::string name;
    std::optional<std::string> location{};

    bool operator==(const DevicePlace&) const = default;
};

/// What the kernel says about a device by the name of its folder:
/// - "PNP0C0F:02" and "pci0000:00", a kind and a number: "PNP0C0F" at "02", "pci0000" at "00";
/// - "40003000.serial", an address and a name of the device tree: "serial" at "40003000";
/// - "0000:00:1f.2", a function on a PCI bus: "pci" at "0000:00:1f.2".
///
/// Any other folder's name is the device's, which has no location.
DevicePlace devicePlace(const std::string& folder);

} // namespace farview
