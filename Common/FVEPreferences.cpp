#include "Common/FVEPreferences.h"

#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/PerPlatform.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/Preferences.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

using farview::DistributedNotificationCenter;
using farview::PreferencesHost;
using farview::PreferencesUser;
using farview::PropertyList;

namespace
{

constexpr std::int64_t lastValidState = 2;

bool isNumber(const PropertyList& value) { return value.is<std::int64_t>() || value.is<double>(); }

/// The number as a 32-bit integer; nothing when it is none exactly.
std::optional<std::int32_t> asInteger32(const PropertyList& number)
{
    using Limits = std::numeric_limits<std::int32_t>;
    if (const auto* integer = number.get<std::int64_t>()) {
        if (*integer < Limits::min() || *integer > Limits::max())
            return std::nullopt;
        return static_cast<std::int32_t>(*integer);
    }
    const double real = *number.get<double>();
    if (!(real >= Limits::min() && real <= Limits::max()))
        return std::nullopt;
    const auto whole = static_cast<std::int32_t>(real);
    return whole == real ? std::optional(whole) : std::nullopt;
}

} // namespace

FVEPreferences& FVEPreferences::sharedAppPrefs()
{
    static farview::PerPlatform<FVEPreferences> shared;
    return shared.get(farview::Platform::generation(), [] {
        const auto& platform = farview::Platform::current();
        return std::make_unique<FVEPreferences>(*platform.preferences,
                                                *platform.distributedNotificationCenter);
    });
}

FVEPreferences::FVEPreferences(farview::Preferences& preferences,
                               DistributedNotificationCenter& center)
    : mPreferences(preferences), mCenter(center),
      mLateWrites(preferences.observeLateWrites([this] { prefsDidChangeNotification(); }))
{
}

void FVEPreferences::setupDefaultValues()
{
    // Each of these writes its default when the domain has none.
    currentState();
    showInMenuBar();
    currentVirtualScreenDevice();
    autoConnectOption();
    autoUpdateOption();
    autoMoveWindowsBackOption();
    enableTouchDisplay();
    areRetinaResolutionsEnabled();
}

/// The key's value, when there is one of the right type. One of another type that holds on this
/// host only is passed over: no setter can replace it, so the default would be written at every
/// read.
std::optional<PropertyList> FVEPreferences::find(const char* key,
                                                 bool (*hasRightType)(const PropertyList&))
{
    auto value = mPreferences.copyAppValue(key, kApplicationID);
    if (value && !hasRightType(*value))
        value = mPreferences.copyValue(key, kApplicationID, PreferencesUser::current,
                                       PreferencesHost::any);
    return value && hasRightType(*value) ? value : std::nullopt;
}

template <typename Type> std::optional<Type> FVEPreferences::valueOf(const char* key)
{
    const std::optional<PropertyList> found =
        find(key, [](const PropertyList& each) { return each.is<Type>(); });
    return found ? std::optional(*found->get<Type>()) : std::nullopt;
}

long FVEPreferences::currentState()
{
    const auto value = find(kCurrentState, isNumber);
    if (!value) {
        setCurrentState(0);
        return 0;
    }
    // A number that another program stored out of range reads as "off" and stays as it is.
    const auto state = asInteger32(*value).value_or(0);
    return state >= 0 && state <= lastValidState ? state : 0;
}

void FVEPreferences::setCurrentState(long state)
{
    const bool valid = state >= 0 && state <= lastValidState;
    mPreferences.setAppValue(kCurrentState, PropertyList(std::int64_t{valid ? state : 0}),
                             kApplicationID);
    synchronizeWithNotification();
}

bool FVEPreferences::booleanDefaultingToYes(const char* key)
{
    if (const auto flag = valueOf<bool>(key))
        return *flag;
    setBoolean(key, true);
    return true;
}

void FVEPreferences::setBoolean(const char* key, bool flag)
{
    mPreferences.setAppValue(key, PropertyList(flag), kApplicationID);
    synchronizeWithNotification();
}

std::string FVEPreferences::text(const char* key)
{
    if (const auto text = valueOf<std::string>(key))
        return *text;
    setText(key, "");
    // Announced twice: the other programs count on hearing of a text's default two times.
    synchronizeWithNotification();
    return "";
}

void FVEPreferences::setText(const char* key, const std::string& value)
{
    mPreferences.setAppValue(key, PropertyList(value), kApplicationID);
    synchronizeWithNotification();
}

bool FVEPreferences::showInMenuBar() { return booleanDefaultingToYes(kShowInMenuBar); }
void FVEPreferences::setShowInMenuBar(bool flag) { setBoolean(kShowInMenuBar, flag); }

std::string FVEPreferences::currentVirtualScreenDevice()
{
    return text(kCurrentVirtualScreenDeviceName);
}
void FVEPreferences::setCurrentVirtualScreenDevice(const std::string& hostName)
{
    setText(kCurrentVirtualScreenDeviceName, hostName);
}
void FVEPreferences::setCurrentVirtualScreenDevice(std::nullopt_t none)
{
    mPreferences.setAppValue(kCurrentVirtualScreenDeviceName, none, kApplicationID);
    synchronizeWithNotification();
}

bool FVEPreferences::autoConnectOption() { return booleanDefaultingToYes(kAutoConnectOption); }
void FVEPreferences::setAutoConnectOption(bool flag) { setBoolean(kAutoConnectOption, flag); }

bool FVEPreferences::autoUpdateOption() { return booleanDefaultingToYes(kAutoUpdateOption); }
void FVEPreferences::setAutoUpdateOption(bool flag) { setBoolean(kAutoUpdateOption, flag); }

bool FVEPreferences::autoMoveWindowsBackOption()
{
    return booleanDefaultingToYes(kAutoMoveWindowsBackOption);
}
void FVEPreferences::setAutoMoveWindowsBackOption(bool flag)
{
    setBoolean(kAutoMoveWindowsBackOption, flag);
}

bool FVEPreferences::enableTouchDisplay()
{
    return booleanDefaultingToYes(kEnableTouchDisplayOption);
}
void FVEPreferences::setEnableTouchDisplay(bool flag)
{
    setBoolean(kEnableTouchDisplayOption, flag);
}

bool FVEPreferences::areRetinaResolutionsEnabled()
{
    return booleanDefaultingToYes(kEnableRetinaDisplayOption);
}
void FVEPreferences::setRetinaResolutionsEnabled(bool flag)
{
    setBoolean(kEnableRetinaDisplayOption, flag);
}

PropertyList::Array FVEPreferences::autoConnectDevices()
{
    if (const auto devices = valueOf<PropertyList::Array>(kAutoConnectDevices))
        return *devices;
    setAutoConnectDevices({});
    // Announced twice, as a text's default is.
    synchronizeWithNotification();
    return {};
}

PropertyList FVEPreferences::deviceScreen(const std::string& device)
{
    const auto screens = valueOf<PropertyList::Dictionary>(kDeviceScreens);
    const auto found = screens ? screens->find(device) : PropertyList::Dictionary::const_iterator{};
    return screens && found != screens->end() ? found->second : PropertyList();
}

void FVEPreferences::setDeviceScreen(const std::string& device, const PropertyList& screen)
{
    auto screens =
        valueOf<PropertyList::Dictionary>(kDeviceScreens).value_or(PropertyList::Dictionary{});
    if (const auto found = screens.find(device); found != screens.end() && found->second == screen)
        return;
    while (screens.size() >= mostDeviceScreens && !screens.contains(device))
        screens.erase(screens.begin());
    screens[device] = screen;
    mPreferences.setAppValue(kDeviceScreens, PropertyList(screens), kApplicationID);
    synchronizeWithNotification();
}

void FVEPreferences::setAutoConnectDevices(const PropertyList::Array& devices)
{
    mPreferences.setAppValue(kAutoConnectDevices, PropertyList(devices), kApplicationID);
    synchronizeWithNotification();
}

std::string FVEPreferences::lastOtherDevice() { return text(kLastOtherDeviceName); }
void FVEPreferences::setLastOtherDevice(const std::string& address)
{
    setText(kLastOtherDeviceName, address);
}

bool FVEPreferences::firstRun() { return booleanDefaultingToYes(kFirstRun); }
void FVEPreferences::setFirstRun(bool flag) { setBoolean(kFirstRun, flag); }

bool FVEPreferences::openPrefsInSettingsPane()
{
    return booleanDefaultingToYes(kOpenPrefsInSettingsPane);
}
void FVEPreferences::setOpenPrefsInSettingsPane(bool flag)
{
    setBoolean(kOpenPrefsInSettingsPane, flag);
}

bool FVEPreferences::booleanDefaultingToNo(const char* key)
{
    return valueOf<bool>(key).value_or(false);
}

bool FVEPreferences::debuggingDontSendKBEvents()
{
    return booleanDefaultingToNo(kDebuggingDontSendKBEvents);
}

bool FVEPreferences::autoConnectAllDevices()
{
    return booleanDefaultingToNo(kAutoConnectAllDevices);
}
void FVEPreferences::setAutoConnectAllDevices(bool flag)
{
    setBoolean(kAutoConnectAllDevices, flag);
}

bool FVEPreferences::logsScreenPackets() { return booleanDefaultingToNo(kLogScreenPackets); }
void FVEPreferences::setLogsScreenPackets(bool flag) { setBoolean(kLogScreenPackets, flag); }

bool FVEPreferences::autoUpdateOptionShown()
{
    return booleanDefaultingToNo(kAutoUpdateOptionShown);
}
void FVEPreferences::setAutoUpdateOptionShown(bool flag)
{
    setBoolean(kAutoUpdateOptionShown, flag);
}

std::optional<farview::Date> FVEPreferences::lastUpdateCheck()
{
    return valueOf<farview::Date>(kLastUpdateCheck);
}

std::string FVEPreferences::lastUpdateOutcome()
{
    return valueOf<std::string>(kLastUpdateOutcome).value_or("");
}

void FVEPreferences::setLastUpdateCheck(farview::Date date, const std::string& outcome)
{
    mPreferences.setAppValue(kLastUpdateCheck, PropertyList(date), kApplicationID);
    mPreferences.setAppValue(kLastUpdateOutcome, PropertyList(outcome), kApplicationID);
    synchronizeWithNotification();
}

bool FVEPreferences::enableHiDPIResolutions()
{
    synchronizeWindowServer();
    const auto copy = [this](const char* key) {
        return mPreferences.copyValue(key, kWindowServerDomain, PreferencesUser::any,
                                      PreferencesHost::current);
    };
    const auto enabled = copy(kDisplayResolutionEnabled);
    const auto disabled = copy(kDisplayResolutionDisabled);
    // Presence and type decide, never the stored truth value: who writes these keys always writes
    // one as true and removes the other.
    if (disabled && disabled->is<bool>())
        return false;
    return enabled || disabled;
}

void FVEPreferences::setEnableHiDPIResolutions(bool flag)
{
    const char* const chosen = flag ? kDisplayResolutionEnabled : kDisplayResolutionDisabled;
    const char* const other = flag ? kDisplayResolutionDisabled : kDisplayResolutionEnabled;
    mPreferences.setAppValue(chosen, PropertyList(true), kWindowServerDomain);
    mPreferences.setAppValue(other, std::nullopt, kWindowServerDomain);
    synchronizeWindowServer();
}

void FVEPreferences::synchronizeWindowServer()
{
    mPreferences.synchronize(kWindowServerDomain, PreferencesUser::any, PreferencesHost::current);
}

void FVEPreferences::synchronize()
{
    mPreferences.synchronize(kApplicationID, PreferencesUser::current, PreferencesHost::current);
    mPreferences.appSynchronize(kApplicationID);
}

void FVEPreferences::synchronizeWithNotification()
{
    prefsWillChangeNotification();
    synchronize();
    prefsDidChangeNotification();
}

void FVEPreferences::prefsWillChangeNotification()
{
    mCenter.postNotificationName(kFVEPrefsWillChangeNotification, "", {},
                                 DistributedNotificationCenter::deliverImmediately |
                                     DistributedNotificationCenter::postToAllSessions);
}

void FVEPreferences::prefsDidChangeNotification()
{
    mCenter.postNotificationName(kFVEPrefsDidChangeNotification, "", {},
                                 DistributedNotificationCenter::deliverImmediately |
                                     DistributedNotificationCenter::postToAllSessions);
}
