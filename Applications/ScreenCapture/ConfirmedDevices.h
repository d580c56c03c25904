#pragma once

#include "Platform/Preferences.h"

#include <cstddef>
#include <string>

namespace farview
{

/// The devices that the user has confirmed: chosen by hand, or ticked while they were there. A
/// device is its name together with the name of its host, so that another computer that announces
/// the same name is not taken for it.
///
/// Kept in a preferences domain of the server's own, as durable as every setting. Main thread only.
class ConfirmedDevices
{
public:
    static constexpr const char* domain = "com.quillon.ScreenCapture";
    static constexpr const char* key = "confirmedDevices";
    static constexpr const char* nameKey = "DeviceName";
    static constexpr const char* hostNameKey = "HostName";
    /// Beyond that the device confirmed the longest ago is forgotten.
    static constexpr std::size_t mostDevices = 256;

    /// `preferences` outlives it.
    explicit ConfirmedDevices(Preferences& preferences) : mPreferences(preferences) {}

    bool contains(const std::string& name, const std::string& hostName) const;
    /// Writes at once, and nothing when it is known. A name that moved to another host is confirmed
    /// there from now on.
    void confirm(const std::string& name, const std::string& hostName);

private:
    PropertyList::Array stored() const;

    Preferences& mPreferences;
};

} // namespace farview
