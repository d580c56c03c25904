#pragma once

#include "Platform/Types/PropertyList.h"
#include "Platform/Types/Subscription.h"

#include <memory>
#include <optional>
#include <string>

inline constexpr const char* kCurrentState = "currentState";
inline constexpr const char* kShowInMenuBar = "showInMenuBar";
inline constexpr const char* kCurrentVirtualScreenDeviceName = "currentVirtualScreenDeviceName";
inline constexpr const char* kAutoConnectOption = "autoConnectOption";
inline constexpr const char* kAutoUpdateOption = "autoUpdateOption";
inline constexpr const char* kAutoMoveWindowsBackOption = "autoMoveWindowsBackOption";
inline constexpr const char* kEnableTouchDisplayOption = "enableDisplayTouch";
inline constexpr const char* kEnableRetinaDisplayOption = "enableRetinaDisplay";
inline constexpr const char* kAutoConnectAllDevices = "autoConnectAllDevices";
inline constexpr const char* kAutoConnectDevices = "autoConnectDevices";
inline constexpr const char* kDeviceScreens = "deviceScreens";
inline constexpr const char* kLastOtherDeviceName = "lastOtherDeviceName";
inline constexpr const char* kFirstRun = "firstRun";
inline constexpr const char* kOpenPrefsInSettingsPane = "openPrefsInSettingsPane";
inline constexpr const char* kAutoUpdateOptionShown = "autoUpdateOptionShown";
inline constexpr const char* kLastUpdateCheck = "lastUpdateCheck";
inline constexpr const char* kLastUpdateOutcome = "lastUpdateOutcome";
inline constexpr const char* kLogScreenPackets = "logScreenPackets";
inline constexpr const char* kDebuggingDontSendKBEvents = "QLNDebuggingDontSendKBEvents";

namespace farview
{
class DistributedNotificationCenter;
class Preferences;
} // namespace farview

/// The settings that all programs of the system share. Nothing is cached: every getter asks the
/// preferences afresh and never fails. A missing or wrongly typed value yields its default, which
/// is written back and announced. A wrongly typed value of this host only is passed over: no setter
/// can replace it. Every setter writes at once and announces the change before and after. Main
/// thread only.
class FVEPreferences
{
public:
    /// The process-wide store, made on first use on the current platform.
    static FVEPreferences& sharedAppPrefs();

    FVEPreferences(farview::Preferences& preferences,
                   farview::DistributedNotificationCenter& center);

    /// Writes the defaults of the eight settings that must exist, where they are missing.
    void setupDefaultValues();

    /// 0 off, 1 on, 2 trouble. Anything else reads as 0.
    long currentState();
    void setCurrentState(long state);
    bool showInMenuBar();
    void setShowInMenuBar(bool flag);
    /// The host name (or the address) of the device in use; "" for none.
    std::string currentVirtualScreenDevice();
    void setCurrentVirtualScreenDevice(const std::string& hostName);
    /// Removes it; the next read stores "".
    void setCurrentVirtualScreenDevice(std::nullopt_t);
    bool autoConnectOption();
    void setAutoConnectOption(bool flag);
    /// Whether auto-connection takes all of its devices that are there, not only the first. Until
    /// it is set, no.
    bool autoConnectAllDevices();
    void setAutoConnectAllDevices(bool flag);
    bool autoUpdateOption();
    void setAutoUpdateOption(bool flag);
    bool autoMoveWindowsBackOption();
    void setAutoMoveWindowsBackOption(bool flag);
    bool enableTouchDisplay();
    void setEnableTouchDisplay(bool flag);
    bool areRetinaResolutionsEnabled();
    void setRetinaResolutionsEnabled(bool flag);
    /// Names of devices, in the user's order of preference. The elements are not checked.
    farview::PropertyList::Array autoConnectDevices();
    void setAutoConnectDevices(const farview::PropertyList::Array& devices);
    /// What is remembered of that device's monitor, by its host name or its address; read and made
    /// by the functions of `Common/Rules/DeviceScreen.h`.
    farview::PropertyList deviceScreen(const std::string& device);
    /// Writes nothing when nothing changes. Beyond `mostDeviceScreens` another one is forgotten.
    void setDeviceScreen(const std::string& device, const farview::PropertyList& screen);
    static constexpr std::size_t mostDeviceScreens = 256;
    /// The address typed last.
    std::string lastOtherDevice();
    void setLastOtherDevice(const std::string& address);
    bool firstRun();
    void setFirstRun(bool flag);
    bool openPrefsInSettingsPane();
    void setOpenPrefsInSettingsPane(bool flag);
    /// Whether the user has had the chance to see the option for updates. Until it is set, no.
    bool autoUpdateOptionShown();
    void setAutoUpdateOptionShown(bool flag);
    /// When updates were looked for last; nothing when never.
    std::optional<farview::Date> lastUpdateCheck();
    /// What that came to, in a word; "" when never.
    std::string lastUpdateOutcome();
    /// Stores both at once.
    void setLastUpdateCheck(farview::Date date, const std::string& outcome);
    bool debuggingDontSendKBEvents();
    /// Whether the server logs what it sends of the screen. Until it is set, no.
    bool logsScreenPackets();
    void setLogsScreenPackets(bool flag);

    /// The window server's setting, which holds for all users of this computer.
    bool enableHiDPIResolutions();
    void setEnableHiDPIResolutions(bool flag);
    void synchronizeWindowServer();

    void synchronize();
    void synchronizeWithNotification();
    void prefsWillChangeNotification();
    void prefsDidChangeNotification();

private:
    std::optional<farview::PropertyList> find(const char* key,
                                              bool (*hasRightType)(const farview::PropertyList&));
    template <typename Type> std::optional<Type> valueOf(const char* key);
    bool booleanDefaultingToYes(const char* key);
    /// Writes nothing.
    bool booleanDefaultingToNo(const char* key);
    void setBoolean(const char* key, bool flag);
    std::string text(const char* key);
    void setText(const char* key, const std::string& value);

    farview::Preferences& mPreferences;
    farview::DistributedNotificationCenter& mCenter;
    farview::Subscription mLateWrites;
};
