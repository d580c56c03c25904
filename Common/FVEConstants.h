#pragma once

#include <cstdint>

// What the programs of the system agree on. Every value is read by other programs: none may change.

inline constexpr std::int32_t kClientSidebandPort = 6000;
inline constexpr std::int32_t kMainDataTrafficPort = 6001;
inline constexpr std::int32_t kServerSidebandPort = 6002;

/// The preferences domain shared by the panel, the screen server and the status item.
inline constexpr const char* kApplicationID = "com.quillon.Farview";
/// The window server's preferences domain. One of these two keys is there, and true; the other is
/// not.
inline constexpr const char* kWindowServerDomain = "com.apple.windowserver";
inline constexpr const char* kDisplayResolutionEnabled = "DisplayResolutionEnabled";
inline constexpr const char* kDisplayResolutionDisabled = "DisplayResolutionDisabled";
/// The pane's own bundle, whose catalogues hold every text.
inline constexpr const char* kFVEPaneBundleID = "com.quillon.FarviewPrefPanel";

inline constexpr const char* kFVEScreenServerApplicationName = "ScreenCapture";
inline constexpr const char kFVEScreenServerApplicationNameCString[] = "ScreenCapture";
/// By it the desktop knows whether the server runs; its own settings are stored under it too.
inline constexpr const char* kFVEScreenServerBundleID = "com.quillon.ScreenCapture";
inline constexpr const char* kFVEMenuExtraApplicationName = "FarviewStatusItem";
inline constexpr const char* kFVEDoctorApplicationName = "FarviewDoctor";
inline constexpr const char* kFVEMenuExtraBundleID = "com.quillon.menuextra.Farview";
/// Tells the status item that the user has just logged in: it starts what the settings ask for.
inline constexpr const char* kAtLoginArgument = "--at-login";
inline constexpr const char* kFVEDisplayResolutionsOnApplicationName =
    "com.quillon.displayresolutionson";
inline constexpr const char* kFVEDisplayResolutionsOffApplicationName =
    "com.quillon.displayresolutionsoff";
inline constexpr const char* kFVEDocumentationName = "Farview Documentation";

/// The list of the devices that were ever seen, in the support folder of that name.
inline constexpr const char* kFVEApplicationSupportFolderName = "Farview";
inline constexpr const char* kSeenDevicesForAutoConnectTableFilename = "SeenDevices.plist";

inline constexpr const char* kFVEKextName = "QLExGFX";
// These two are crossed over: the version display depends on exactly this pairing.
inline constexpr const char* kFVEFrameBufferKext = "QLVideoCard";
inline constexpr const char* kFVEVideoCardKext = "QLFrameBuffer";

inline constexpr const char* kVirtualScreenServiceName = "_qlexvscreen._udp";
/// The TXT-record key under which a device tells whether it is in use.
inline constexpr const char* kFVEConnectionStateKey = "ConnState";

inline constexpr const char* kFVEAssignedTicketKey = "Ticket";
inline constexpr const char* kFVEIPTicketKey = "IPTicket";
inline constexpr const char* kScalingEnabledPreferenceKey = "kScalingEnabledPreferenceKey";
inline constexpr const char* kScaleInFullScreenPreferenceKey = "kScaleInFullScreenPreferenceKey";
inline constexpr const char* kStartInFullScreenPreferenceKey = "kStartInFullScreenPreferenceKey";

/// A device's link to a host, as its TXT record tells it.
enum FVExConnectState : int {
    FVExConnectStateNone = 0,
    FVExConnectStateNotConnected = 1,
    FVExConnectStateConnected = 2,
};
