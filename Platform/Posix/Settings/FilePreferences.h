#pragma once

#include "Platform/Posix/Settings/PreferencesLocations.h"
#include "Platform/Posix/Settings/PreferencesMerge.h"
#include "Platform/Posix/Settings/PreferencesSnapshot.h"
#include "Platform/Preferences.h"

#include <map>
#include <string>
#include <tuple>

namespace farview
{

class Log;

/// Preferences in XML property lists, one file per domain and scope; see `PreferencesLocations`.
///
/// Readers take no lock and see each change of other processes at once. A synchronize waits at most
/// one second for another writer; after it has waited in vain, the next ones only try, until one
/// succeeds, so that a stopped process costs one second in all. Each kind of trouble is logged once
/// until it ends. Main thread only.
class FilePreferences final : public Preferences
{
public:
    /// `log` is used, not owned.
    FilePreferences(PreferencesLocations locations, Log& log);

    std::optional<PropertyList> copyValue(const std::string& key, const std::string& applicationID,
                                          PreferencesUser user, PreferencesHost host) override;
    void setAppValue(const std::string& key, std::optional<PropertyList> value,
                     const std::string& applicationID) override;
    bool synchronize(const std::string& applicationID, PreferencesUser user,
                     PreferencesHost host) override;
    bool appSynchronize(const std::string& applicationID) override;

private:
    struct Scope {
        explicit Scope(PreferencesLocation where)
            : location(std::move(where)), snapshot(location.path)
        {
        }

        PreferencesLocation location;
        PreferencesSnapshot snapshot;
        PreferencesChanges pending;
        bool hasWaitedInVain = false;
        std::string lastReadTrouble;
        std::string lastWriteTrouble;
    };
    using ScopeKey = std::tuple<std::string, PreferencesUser, PreferencesHost>;

    Scope& scope(const std::string& applicationID, PreferencesUser user, PreferencesHost host);
    bool store(Scope& scope);
    void report(Scope& scope, std::string& last, const std::string& trouble);

    PreferencesLocations mLocations;
    Log& mLog;
    std::map<ScopeKey, Scope> mScopes;
};

} // namespace farview
