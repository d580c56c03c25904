#pragma once

#include "Platform/NetService.h"

namespace farview
{

/// Whether the device says, in its latest TXT record, that a host is using it.
bool isDeviceInUse(const NetService& service);

} // namespace farview
