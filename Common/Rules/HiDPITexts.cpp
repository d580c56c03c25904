#include "Common/Rules/HiDPITexts.h"

namespace farview
{

std::string hiDPIExplanation(bool isEnabled)
{
    return isEnabled
               ? "HiDPI resolutions are on. OK turns them off for all users of this computer. "
                 "An administrator's password may be asked for."
               : "HiDPI resolutions are off. OK turns them on for all users of this computer. "
                 "An administrator's password may be asked for.";
}

std::string authorizationTrouble(AuthorizationStatus foreseen)
{
    switch (foreseen) {
    case AuthorizationStatus::success:
    case AuthorizationStatus::canceled:
    case AuthorizationStatus::toolExecuteFailure:
        return {};
    case AuthorizationStatus::denied:
        return "This session may not change the setting. Log in at this computer itself, or ask "
               "its administrator.";
    case AuthorizationStatus::interactionNotAllowed:
        return "Nothing in this session can ask for a password. Start the authentication agent of "
               "your desktop (for example polkit-gnome or lxpolkit), then try again.";
    case AuthorizationStatus::internal:
        break;
    }
    return "The system cannot be asked for administrator rights. Install polkitd and pkexec, and "
           "Farview for all users of this computer, then try again.";
}

} // namespace farview
