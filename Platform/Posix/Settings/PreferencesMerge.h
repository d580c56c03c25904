#pragma once

#include "Platform/Posix/Settings/PreferencesLocations.h"
#include "Platform/Types/PropertyList.h"

#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace farview
{

/// What is to change in one file: a value to store, or nothing to remove the key.
using PreferencesChanges = std::map<std::string, std::optional<PropertyList>>;

/// What became of a change.
struct PreferencesMergeResult {
    enum class Status {
        done,   ///< on the disk, apart from the `refused` keys
        locked, ///< another process held the lock for too long; nothing was changed
        failed, ///< nothing was changed, see the reason
    };

    Status status = Status::failed;
    std::string reason;            ///< of a failure or a refusal, for the log
    std::set<std::string> refused; ///< keys whose values no property list can hold
    std::string setAside;          ///< where a broken file went; empty when there was none
};

/// Changes those keys in one scope's file and leaves all others as they are.
///
/// Many processes may do this at once, and be killed at any moment: under an exclusive lock the
/// file is read anew, changed, and replaced in one step that is durable when this returns. A file
/// that is no property list is set aside first. A link in the file's place is followed: its target
/// is replaced, the link stays. What would change nothing writes nothing. Also for programs that
/// write for any user; never throws.
PreferencesMergeResult mergeIntoPreferences(const PreferencesLocation& location,
                                            const PreferencesChanges& changes,
                                            std::chrono::milliseconds patience);

} // namespace farview
