#pragma once

#include "Applications/Device/DeviceServer.h"

#include <string>

namespace farview
{

/// What the window shows for a status, line by line: plain text.
std::string deviceHeadline(const DeviceStatus& status);
std::string deviceUseText(const DeviceStatus& status);
std::string deviceOptionsText(const DeviceStatus& status);
std::string deviceTroubleText(const DeviceStatus& status);

} // namespace farview
