#include "Common/Bonjour/QLNBonjourBrowser.h"
#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/FVEPreferences.h"
#include "Common/NSURL_Additions.h"

#include <gtest/gtest.h>

#include <type_traits>

// Every value here is read by another program, or stands in the files of users. A change breaks
// what is already out there: nothing below may be edited to make a test pass.

namespace
{

struct Frozen {
    const char* constant; ///< its name in the code
    const char* value;
    const char* expected;
};

#define FROZEN(constant, expected)                                                                 \
    Frozen { #constant, constant, expected }

const Frozen frozenTexts[] = {
    // Preferences.
    FROZEN(kCurrentState, "currentState"),
    FROZEN(kShowInMenuBar, "showInMenuBar"),
    FROZEN(kCurrentVirtualScreenDeviceName, "currentVirtualScreenDeviceName"),
    FROZEN(kAutoConnectOption, "autoConnectOption"),
    FROZEN(kAutoUpdateOption, "autoUpdateOption"),
    FROZEN(kAutoMoveWindowsBackOption, "autoMoveWindowsBackOption"),
    FROZEN(kEnableTouchDisplayOption, "enableDisplayTouch"),
    FROZEN(kEnableRetinaDisplayOption, "enableRetinaDisplay"),
    FROZEN(kAutoConnectDevices, "autoConnectDevices"),
    FROZEN(kDeviceScreens, "deviceScreens"),
    FROZEN(kLastOtherDeviceName, "lastOtherDeviceName"),
    FROZEN(kFirstRun, "firstRun"),
    FROZEN(kOpenPrefsInSettingsPane, "openPrefsInSettingsPane"),
    FROZEN(kAutoUpdateOptionShown, "autoUpdateOptionShown"),
    FROZEN(kLastUpdateCheck, "lastUpdateCheck"),
    FROZEN(kLastUpdateOutcome, "lastUpdateOutcome"),
    FROZEN(kLogScreenPackets, "logScreenPackets"),
    FROZEN(kDebuggingDontSendKBEvents, "QLNDebuggingDontSendKBEvents"),
    FROZEN(kApplicationID, "com.quillon.Farview"),
    FROZEN(kScalingEnabledPreferenceKey, "kScalingEnabledPreferenceKey"),
    FROZEN(kScaleInFullScreenPreferenceKey, "kScaleInFullScreenPreferenceKey"),
    FROZEN(kStartInFullScreenPreferenceKey, "kStartInFullScreenPreferenceKey"),
    // Distributed notifications.
    FROZEN(kConnectServerToHost, "com.quillon.Farview.ConnectServerToHost"),
    FROZEN(kConnectServerToTicket, "com.quillon.Farview.ConnectServerToTicket"),
    FROZEN(kDisconnectCurrentServerFromHost, "com.quillon.Farview.DisconnectCurrentServerFromHost"),
    FROZEN(kQueryRequestForConnectedHost, "com.quillon.Farview.QueryRequestForConnectedHost"),
    FROZEN(kQueryResultForConnectedHost, "com.quillon.Farview.QueryResultForConnectedHost"),
    FROZEN(kServerConnectedToDevice, "com.quillon.Farview.ServerConnectedToDevice"),
    FROZEN(kServerDisconnectedFromDevice, "com.quillon.Farview.ServerDisconnectedFromDevice"),
    FROZEN(kServerScreenDidChange, "com.quillon.Farview.ServerScreenDidChange"),
    FROZEN(kRequestingErrorMsgFromPrefPane, "com.quillon.Farview.RequestingErrorMsgFromPrefPane"),
    FROZEN(kServerRespondedToConnectRequest, "com.quillon.Farview.ServerRespondedToConnectRequest"),
    FROZEN(kTerminateScreenServer, "com.quillon.Farview.TerminateScreenServer"),
    FROZEN(kTerminateMenuExtra, "com.quillon.Farview.TerminateMenuExtra"),
    FROZEN(kFVEPrefsWillChangeNotification, "com.quillon.Farview.FVEPrefsWillChangeNotification"),
    FROZEN(kFVEPrefsDidChangeNotification, "com.quillon.Farview.FVEPrefsDidChangeNotification"),
    FROZEN(kFVEDeviceWillChangeNotification, "kFVEDevicesWillChangeNotification"),
    FROZEN(kFVEDeviceDidChangeNotification, "kFVEDevicesDidChangeNotification"),
    FROZEN(kBatteryLevelChangedNotification, "kBatteryLevelChangedNotification"),
    // Their keys.
    FROZEN(kDeviceNameKey, "DeviceName"),
    FROZEN(kDeviceAddressKey, "DeviceAddress"),
    FROZEN(kAwaitsRequestKey, "AwaitsRequest"),
    FROZEN(kCipherKey, "Cipher"),
    FROZEN(kScreenReportKey, "Screen"),
    FROZEN(kConnectToHostNameKey, "connectToHostName"),
    FROZEN(kConnectUsingTicketKey, "connectUsingTicket"),
    FROZEN(kOtherDeviceName, "Other"),
    FROZEN(kBatteryLevelKey, "BatteryLevel"),
    FROZEN(kFVEConnectionStateKey, "ConnState"),
    FROZEN(kFVEAssignedTicketKey, "Ticket"),
    FROZEN(kFVEIPTicketKey, "IPTicket"),
    // The browser's notifications.
    FROZEN(kQLNBonjourBrowserWillAddService, "kQLNBonjourBrowserWillAddService"),
    FROZEN(kQLNBonjourBrowserDidAddService, "kQLNBonjourBrowserDidAddService"),
    FROZEN(kQLNBonjourBrowserWillRemoveService, "kQLNBonjourBrowserWillRemoveService"),
    FROZEN(kQLNBonjourBrowserDidRemoveService, "kQLNBonjourBrowserDidRemoveService"),
    FROZEN(kQLNBonjourBrowserDidRemoveServiceNamesKey,
           "kQLNBonjourBrowserDidRemoveServiceNamesKey"),
    FROZEN(kQLNBonjourBrowserDidUpdateService, "kQLNBonjourBrowserDidUpdateService"),
    FROZEN(kQLNBonjourBrowserDidUpdateTXTRecord, "kQLNBonjourBrowserDidUpdateTXTRecord"),
    FROZEN(kQLNBonjourBrowserDidUpdateTXTRecordServiceKey,
           "kQLNBonjourBrowserDidUpdateTXTRecordServiceKey"),
    FROZEN(kQLNBonjourBrowserDidUpdateTXTRecordTXTRecordKey,
           "kQLNBonjourBrowserDidUpdateTXTRecordTXTRecordKey"),
    FROZEN(kQLNBonjourBrowserWillUpdateService, "kQLNBonjourBrowserWillUpdateService"),
    // Programs and bundles.
    FROZEN(kVirtualScreenServiceName, "_qlexvscreen._udp"),
    FROZEN(kFVEScreenServerApplicationName, "ScreenCapture"),
    FROZEN(kFVEScreenServerApplicationNameCString, "ScreenCapture"),
    FROZEN(kFVEMenuExtraApplicationName, "FarviewStatusItem"),
    FROZEN(kFVEMenuExtraBundleID, "com.quillon.menuextra.Farview"),
    FROZEN(kFVEPaneBundleID, "com.quillon.FarviewPrefPanel"),
    FROZEN(kFVEKextName, "QLExGFX"),
    FROZEN(kFVEFrameBufferKext, "QLVideoCard"),
    FROZEN(kFVEVideoCardKext, "QLFrameBuffer"),
    FROZEN(kPrefPaneName, "Farview Preferences.prefPane"),
    FROZEN(kDisplaysPrefPaneName, "Displays.prefPane"),
};

TEST(FrozenTexts, Stay)
{
    for (const Frozen& each : frozenTexts)
        EXPECT_STREQ(each.value, each.expected) << each.constant;
}

TEST(FrozenNumbers, PortsStay)
{
    EXPECT_EQ(kClientSidebandPort, 6000);
    EXPECT_EQ(kMainDataTrafficPort, 6001);
    EXPECT_EQ(kServerSidebandPort, 6002);
    EXPECT_TRUE((std::is_same_v<decltype(kMainDataTrafficPort), const std::int32_t>));
}

TEST(FrozenNumbers, ConnectionStatesStay)
{
    EXPECT_EQ(FVExConnectStateNone, 0);
    EXPECT_EQ(FVExConnectStateNotConnected, 1);
    EXPECT_EQ(FVExConnectStateConnected, 2);
}

} // namespace
