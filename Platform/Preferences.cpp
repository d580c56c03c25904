#include "Platform/Preferences.h"

namespace farview
{

std::optional<PropertyList> Preferences::copyAppValue(const std::string& key,
                                                      const std::string& applicationID)
{
    for (const auto user : {PreferencesUser::current, PreferencesUser::any}) {
        for (const auto host : {PreferencesHost::current, PreferencesHost::any}) {
            if (auto value = copyValue(key, applicationID, user, host))
                return value;
        }
    }
    return std::nullopt;
}

} // namespace farview
