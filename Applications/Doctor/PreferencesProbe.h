#pragma once

#include "Applications/Doctor/Finding.h"

#include <string>
#include <vector>

namespace farview
{

class PreferencesLocations;

/// One file of settings.
struct PreferencesFileFact {
    enum class State {
        good,
        missing,
        broken,     ///< no settings can be read from it
        unreadable, ///< it may be good, but it could not be read
    };

    std::string path;
    State state = State::missing;
    std::string reason{};   ///< why it is broken or unreadable
    bool isWritable = true; ///< the user can change it, or make it where it is missing
    bool isOurs = true;     ///< of the user's own, who has to be able to write it
    /// Broken files that were put aside here earlier.
    std::vector<std::string> setAside{};
};

/// Reads the four files of the shared settings, the server's own and the list of seen devices.
/// Changes nothing, not even a broken file.
std::vector<PreferencesFileFact> preferencesFacts(const PreferencesLocations& locations,
                                                  const std::string& seenDevicesFile);
Findings findingsAboutPreferences(const std::vector<PreferencesFileFact>& files);

} // namespace farview
