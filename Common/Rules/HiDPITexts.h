#pragma once

#include "Platform/Types/AuthorizationStatus.h"

#include <string>

namespace farview
{

/// What the window for HiDPI resolutions says about the setting in force and what OK will do.
std::string hiDPIExplanation(bool isEnabled);

/// What it says, before OK is pressed, about asking for the right; empty when that can work.
std::string authorizationTrouble(AuthorizationStatus foreseen);

/// What it says of a tool that others than root can change, or that is missing; "%@" stands for the
/// path that is to blame.
inline constexpr const char* toolIsChangeableText =
    "This cannot work here: users other than root can change %@, so it is not run as "
    "administrator. "
    "Install Farview for all users of this computer, as administrator, then try again.";
inline constexpr const char* toolIsMissingText =
    "This cannot work here: a part of Farview is missing. Install Farview again.";

} // namespace farview
