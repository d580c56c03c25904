#pragma once

#include "Platform/Posix/Environment.h"
#include "Platform/Preferences.h"

#include <sys/types.h>

#include <string>

namespace farview
{

/// Where one scope of one domain is stored, and who may read it.
struct PreferencesLocation {
    std::string path; ///< empty when no file can bear the domain's name
    mode_t fileMode = 0600;
    mode_t folderMode = 0700;
};

/// Finds the file of each domain and scope: the user's below the folder of settings, those of any
/// user below "/etc/farview" ($FARVIEW_SYSTEM_CONFIG moves it), those of this host in "ByHost".
class PreferencesLocations
{
public:
    /// Looks at the environment and the machine's identifier now, once.
    explicit PreferencesLocations(EnvironmentUse use);

    PreferencesLocation location(const std::string& domain, PreferencesUser user,
                                 PreferencesHost host) const;

private:
    std::string mUserFolder;
    std::string mSystemFolder;
    std::string mMachine;
};

} // namespace farview
