#pragma once

#include "Platform/Posix/Settings/PreferencesLocations.h"
#include "Platform/Posix/Settings/PreferencesMerge.h"
#include "Platform/Posix/Settings/PreferencesSnapshot.h"
#include "Platform/Preferences.h"
#include "Platform/RunLoop.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace farview
{

class Log;

/// Preferences in XML property lists, one file per domain and scope; see `PreferencesLocations`.
///
/// Readers take no lock and see each change of other processes at once. With a loop, a synchronize
/// does not wait for another writer: what that holds up is tried again by the loop, and for a
/// second at the end of this object. Without one, for programs that may wait, it waits at most one
/// second; after it has waited in vain, the next ones only try, until one succeeds. Each kind of
/// trouble is logged once until it ends. Main thread only.
class FilePreferences final : public Preferences
{
public:
    /// `log` and `loop` must outlive this.
    FilePreferences(PreferencesLocations locations, Log& log, RunLoop* loop = nullptr);
    ~FilePreferences() override;

    std::optional<PropertyList> copyValue(const std::string& key, const std::string& applicationID,
                                          PreferencesUser user, PreferencesHost host) override;
    void setAppValue(const std::string& key, std::optional<PropertyList> value,
                     const std::string& applicationID) override;
    bool synchronize(const std::string& applicationID, PreferencesUser user,
                     PreferencesHost host) override;
    bool appSynchronize(const std::string& applicationID) override;
    Subscription observeLateWrites(std::function<void()> action) override;

private:
    struct Scope {
        explicit Scope(PreferencesLocation where)
            : location(std::move(where)), snapshot(location.path)
        {
        }

        PreferencesLocation location;
        PreferencesSnapshot snapshot;
        PreferencesChanges pending;
        bool isHeldUp = false; ///< by another writer
        std::string lastReadTrouble;
        std::string lastWriteTrouble;
    };
    using ScopeKey = std::tuple<std::string, PreferencesUser, PreferencesHost>;

    Scope& scope(const std::string& applicationID, PreferencesUser user, PreferencesHost host);
    bool store(Scope& scope);
    bool write(Scope& scope, std::chrono::milliseconds patience);
    void tryAgainLater();
    void tryAgain();
    void tellLateWrite();
    void report(Scope& scope, std::string& last, const std::string& trouble);

    PreferencesLocations mLocations;
    Log& mLog;
    RunLoop* mLoop;
    std::shared_ptr<int> mLife = std::make_shared<int>(0); ///< of the retries
    Duration mPause;
    bool mIsTryingLater = false;
    std::vector<std::weak_ptr<std::function<void()>>> mLateWriteActions;
    std::map<ScopeKey, Scope> mScopes;
};

} // namespace farview
