#pragma once

// The auto-connect table: the identifiers of its columns, which are the keys of its rows too, what
// its rows are dragged as, and the file that remembers devices beside the chosen ones.

inline constexpr const char* kDevicesTableAutoConnectFlag = "AutoConnectFlag";
inline constexpr const char* kDevicesTableDeviceName = "DeviceName";
inline constexpr const char* kDevicesTableDeviceOrderKind = "DeviceOrderKind";
inline constexpr const char* kDeviceNameTableViewDataType = "DeviceNameTableViewDataType";
inline constexpr const char* kSeenDevicesForAutoConnectTableFilename = "SeenDevices.plist";
