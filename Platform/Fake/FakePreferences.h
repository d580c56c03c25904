#pragma once

#include "Platform/Preferences.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace farview
{

/// Preferences in memory. What this process sets is pending, and unseen by "other processes", until
/// a synchronize stores it.
class FakePreferences final : public Preferences
{
public:
    using Domain = std::map<std::string, PropertyList>;
    /// One call of `synchronize` or (as the current user's any host) of `appSynchronize`.
    struct Synchronization {
        std::string applicationID;
        PreferencesUser user;
        PreferencesHost host;
        bool isWholeApplication; ///< it was `appSynchronize`

        bool operator==(const Synchronization&) const = default;
    };

    std::optional<PropertyList> copyValue(const std::string& key, const std::string& applicationID,
                                          PreferencesUser user, PreferencesHost host) override;
    void setAppValue(const std::string& key, std::optional<PropertyList> value,
                     const std::string& applicationID) override;
    bool synchronize(const std::string& applicationID, PreferencesUser user,
                     PreferencesHost host) override;
    bool appSynchronize(const std::string& applicationID) override;
    Subscription observeLateWrites(std::function<void()> action) override
    {
        const auto kept = std::make_shared<std::function<void()>>(std::move(action));
        mLateWrite = kept;
        return Subscription([kept] {});
    }
    /// As when another process had held a write up that is done now.
    void tellLateWrite() const
    {
        if (const auto action = mLateWrite.lock())
            (*action)();
    }

    /// Stores (or, with nothing, removes) a value as another process or the administrator would.
    void writeAsAnotherProcess(const std::string& key, std::optional<PropertyList> value,
                               const std::string& applicationID,
                               PreferencesUser user = PreferencesUser::current,
                               PreferencesHost host = PreferencesHost::any);
    /// What other processes see of one scope.
    Domain stored(const std::string& applicationID, PreferencesUser user = PreferencesUser::current,
                  PreferencesHost host = PreferencesHost::any) const;
    std::optional<PropertyList> storedValue(const std::string& key,
                                            const std::string& applicationID) const;
    bool hasPending(const std::string& applicationID) const;

    /// While failing, nothing can be stored: a full or read-only disk.
    void setWritesFail(bool fail) { mWritesFail = fail; }

    /// How often a value was set or removed through this interface.
    int setCount() const { return mSetCount; }
    /// How often a synchronize really stored something.
    int writeCount() const { return mWriteCount; }
    /// How often a synchronize had something to store and failed.
    int failedWriteCount() const { return mFailedWriteCount; }
    const std::vector<Synchronization>& synchronizations() const { return mSynchronizations; }

private:
    struct Scope {
        Domain stored;
        std::map<std::string, std::optional<PropertyList>> pending;
    };
    using ScopeKey = std::pair<std::string, std::pair<PreferencesUser, PreferencesHost>>;

    bool store(const ScopeKey& key);

    std::map<ScopeKey, Scope> mScopes;
    std::vector<Synchronization> mSynchronizations;
    int mSetCount = 0;
    int mWriteCount = 0;
    int mFailedWriteCount = 0;
    std::weak_ptr<std::function<void()>> mLateWrite;
    bool mWritesFail = false;
};

} // namespace farview
