#pragma once

#include "Platform/Types/URL.h"

#include <optional>
#include <string>

inline constexpr const char* kPrefPaneName = "Farview Preferences.prefPane";
inline constexpr const char* kDisplaysPrefPaneName = "Displays.prefPane";

/// The address of the settings application, as other programs of the system expect it: the path is
/// spelled without the "s" of the applications folder. Nothing checks that it exists.
farview::URL findSystemPreferences();

/// The first pane with that file name (extension included) in the user's, the local and the
/// system's folder; nothing when none holds it.
std::optional<farview::URL> findPrefPaneLocation(const std::string& name);

/// The pane with that base name (no extension) in the system's folder; nothing when it is not
/// there.
std::optional<farview::URL> findSystemPrefPaneLocation(const std::string& name);
