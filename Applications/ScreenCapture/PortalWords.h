#pragma once

#include "Platform/Desktop/Screens/Portal/PortalMemory.h"
#include "Platform/Preferences.h"

namespace farview
{

/// Where the words are kept in the server's own domain, one for each device.
inline constexpr const char* kPortalWords = "portalWords";

/// Keeps the words of portals there, which nobody but this user may read. `preferences` must live
/// longer.
PortalMemory portalWordsIn(Preferences& preferences);

} // namespace farview
