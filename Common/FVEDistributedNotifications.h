#pragma once

// The contract between the panel, the screen server and the status item: notification names and the
// keys of what they carry. Posted without an object; told apart by name alone.

/// Panel to server: connect to the host named under "connectToHostName". Options 3.
inline constexpr const char* kConnectServerToHost = "com.quillon.Farview.ConnectServerToHost";
/// Panel to server: connect to the address under "connectUsingTicket". Options 3.
inline constexpr const char* kConnectServerToTicket = "com.quillon.Farview.ConnectServerToTicket";
/// Panel to server: end the connection. Options 3.
inline constexpr const char* kDisconnectCurrentServerFromHost =
    "com.quillon.Farview.DisconnectCurrentServerFromHost";
/// Panel to server: which device are you connected to? Options 2.
inline constexpr const char* kQueryRequestForConnectedHost =
    "com.quillon.Farview.QueryRequestForConnectedHost";
/// Server's answer: "DeviceName", "DeviceAddress", "Cipher" and "Key".
inline constexpr const char* kQueryResultForConnectedHost =
    "com.quillon.Farview.QueryResultForConnectedHost";
/// Server: a connection is up; "DeviceName", "DeviceAddress", what encrypts it under "Cipher", for
/// example "TLS_AES_256_GCM_SHA384", and which key the device has proved under "Key".
inline constexpr const char* kServerConnectedToDevice =
    "com.quillon.Farview.ServerConnectedToDevice";
/// Server: there is no connection (any more). With `kAwaitsRequestKey` when the server has just
/// begun and was asked for nothing: what was asked for before was not heard.
inline constexpr const char* kServerDisconnectedFromDevice =
    "com.quillon.Farview.ServerDisconnectedFromDevice";
/// To the server: use the device of the host under "connectToHostName" beside those that are used
/// already. One that is used is not asked for again. Options 3.
inline constexpr const char* kAlsoConnectToHost = "com.quillon.Farview.AlsoConnectToHost";
/// To the server: leave that further device, or stop trying; the others stay. Options 3.
inline constexpr const char* kDisconnectFurtherDevice =
    "com.quillon.Farview.DisconnectFurtherDevice";
/// Server: the devices that are used beside the one that the notifications above are about; a list
/// of `FurtherDevice` as a text under `kFurtherDevicesKey`. Whenever that changes, and in answer to
/// the query for the connected device.
inline constexpr const char* kServerFurtherDevicesDidChange =
    "com.quillon.Farview.ServerFurtherDevicesDidChange";
/// Server: what became of the monitor for the device that is connected, or would become of one; a
/// `ScreenReport` as a text under `kScreenReportKey`. After each report of a connection or of its
/// end, and whenever it changes.
inline constexpr const char* kServerScreenDidChange = "com.quillon.Farview.ServerScreenDidChange";
/// Server: whether a device may be used is in question; a `PairingReport` as a text under
/// `kPairingReportKey`. Whenever that changes, and in answer to the query for the connected device.
inline constexpr const char* kServerPairingDidChange = "com.quillon.Farview.ServerPairingDidChange";
/// To the server: the user sees the digits under "Digits" at the device. Options 3.
inline constexpr const char* kConfirmDevice = "com.quillon.Farview.ConfirmDevice";
/// To the server: the user does not see them there, or does not want to go on. Options 3.
inline constexpr const char* kRefuseDevice = "com.quillon.Farview.RefuseDevice";
/// Any process, after it changed the list of those that the user has confirmed (`PairedPeers`): the
/// server leaves a device that it no longer knows, and tells the others whether they may type.
/// Options 3.
inline constexpr const char* kPairedDevicesDidChange = "com.quillon.Farview.PairedDevicesDidChange";
/// To a device on this computer: the user sees the digits under "Digits" at the computer that is
/// connecting. Options 3.
inline constexpr const char* kAcceptComputer = "com.quillon.FarviewDevice.AcceptComputer";
/// A device: those digits are the ones it shows, and it has accepted. With the same "Digits".
inline constexpr const char* kComputerAccepted = "com.quillon.FarviewDevice.ComputerAccepted";
/// Server: the device could not be reached; the panel is to show its error text.
inline constexpr const char* kRequestingErrorMsgFromPrefPane =
    "com.quillon.Farview.RequestingErrorMsgFromPrefPane";
/// Reserved. The panel's handler of that name listens to `kConnectServerToHost` instead.
inline constexpr const char* kServerRespondedToConnectRequest =
    "com.quillon.Farview.ServerRespondedToConnectRequest";
/// Panel to server: quit. Options 3.
inline constexpr const char* kTerminateScreenServer = "com.quillon.Farview.TerminateScreenServer";
/// Panel to status item: quit. Options 3.
inline constexpr const char* kTerminateMenuExtra = "com.quillon.Farview.TerminateMenuExtra";

/// Any process, right before and right after it wrote the shared preferences. Options 3.
inline constexpr const char* kFVEPrefsWillChangeNotification =
    "com.quillon.Farview.FVEPrefsWillChangeNotification";
inline constexpr const char* kFVEPrefsDidChangeNotification =
    "com.quillon.Farview.FVEPrefsDidChangeNotification";

// Reserved for the other programs; nobody posts them here.
inline constexpr const char* kFVEDeviceWillChangeNotification = "kFVEDevicesWillChangeNotification";
inline constexpr const char* kFVEDeviceDidChangeNotification = "kFVEDevicesDidChangeNotification";
inline constexpr const char* kBatteryLevelChangedNotification = "kBatteryLevelChangedNotification";
inline constexpr const char* kBatteryLevelKey = "BatteryLevel";

inline constexpr const char* kDeviceNameKey = "DeviceName";
inline constexpr const char* kDeviceAddressKey = "DeviceAddress";
inline constexpr const char* kScreenReportKey = "Screen";
/// How the connection is encrypted, as TLS names it; beside the device's name and address.
inline constexpr const char* kCipherKey = "Cipher";
/// By which `PairedPeers` knows the device.
inline constexpr const char* kDeviceKeyKey = "Key";
inline constexpr const char* kFurtherDevicesKey = "FurtherDevices";
inline constexpr const char* kPairingReportKey = "Pairing";
inline constexpr const char* kDigitsKey = "Digits";
inline constexpr const char* kAwaitsRequestKey = "AwaitsRequest";
inline constexpr const char* kConnectToHostNameKey = "connectToHostName";
inline constexpr const char* kConnectUsingTicketKey = "connectUsingTicket";

/// The "DeviceName" of a connection that was made by address.
inline constexpr const char* kOtherDeviceName = "Other";
