#pragma once

#include "Platform/NetService.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// A device that is to be connected to.
struct DeviceTarget {
    std::string deviceName;               ///< its host name, or "Other"
    std::string serviceName = {};         ///< as the user knows it; empty for "Other"
    std::vector<Endpoint> endpoints = {}; ///< where it is; empty while that is not known
};

/// The first of the services that is of that host and known to be somewhere.
inline std::optional<DeviceTarget>
targetOfHost(const std::vector<std::shared_ptr<NetService>>& services, const std::string& hostName)
{
    for (const auto& service : services) {
        if (service->hostName() == hostName && !service->endpoints().empty())
            return DeviceTarget{hostName, service->name(), service->endpoints()};
    }
    return std::nullopt;
}

} // namespace farview
