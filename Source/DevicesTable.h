#pragma once

#include "Common/FVEConstants.h"

// The auto-connect table: the identifiers of its columns, which are the keys of its rows too, and
// what its rows are dragged as.

inline constexpr const char* kDevicesTableAutoConnectFlag = "AutoConnectFlag";
inline constexpr const char* kDevicesTableDeviceName = "DeviceName";
inline constexpr const char* kDevicesTableDeviceOrderKind = "DeviceOrderKind";
inline constexpr const char* kDeviceNameTableViewDataType = "DeviceNameTableViewDataType";
