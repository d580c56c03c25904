#include "Applications/ScreenCapture/ConfirmedDevices.h"

#include <algorithm>
#include <utility>

namespace farview
{

namespace
{

bool holds(const PropertyList& device, const char* key, const std::string& expected)
{
    const auto* entries = device.get<PropertyList::Dictionary>();
    if (!entries)
        return false;
    const auto found = entries->find(key);
    return found != entries->end() && found->second == PropertyList(expected);
}

} // namespace

PropertyList::Array ConfirmedDevices::stored() const
{
    const auto value = mPreferences.copyAppValue(key, domain);
    const auto* devices = value ? value->get<PropertyList::Array>() : nullptr;
    return devices ? *devices : PropertyList::Array{};
}

bool ConfirmedDevices::contains(const std::string& name, const std::string& hostName) const
{
    const auto devices = stored();
    return std::any_of(devices.begin(), devices.end(), [&](const auto& device) {
        return holds(device, nameKey, name) && holds(device, hostNameKey, hostName);
    });
}

void ConfirmedDevices::confirm(const std::string& name, const std::string& hostName)
{
    if (contains(name, hostName))
        return;
    auto devices = stored();
    std::erase_if(devices, [&](const auto& device) { return holds(device, nameKey, name); });
    PropertyList::Dictionary device;
    device.emplace(nameKey, name);
    device.emplace(hostNameKey, hostName);
    devices.emplace_back(std::move(device));
    if (devices.size() > mostDevices)
        devices.erase(devices.begin(), devices.end() - static_cast<std::ptrdiff_t>(mostDevices));
    mPreferences.setAppValue(key, PropertyList(std::move(devices)), domain);
    mPreferences.appSynchronize(domain);
}

} // namespace farview
