#include "Platform/Posix/Settings/FilePreferences.h"

#include "Platform/Log.h"

namespace farview
{
namespace
{

constexpr std::chrono::milliseconds longestWait{1000};

} // namespace

FilePreferences::FilePreferences(PreferencesLocations locations, Log& log)
    : mLocations(std::move(locations)), mLog(log)
{
}

FilePreferences::Scope& FilePreferences::scope(const std::string& applicationID,
                                               PreferencesUser user, PreferencesHost host)
{
    ScopeKey key{applicationID, user, host};
    const auto found = mScopes.find(key);
    if (found != mScopes.end())
        return found->second;
    auto location = mLocations.location(applicationID, user, host);
    return mScopes.try_emplace(std::move(key), std::move(location)).first->second;
}

void FilePreferences::report(Scope& scope, std::string& last, const std::string& trouble)
{
    if (trouble != last && !trouble.empty())
        mLog.write(LogLevel::warning, "preferences " + scope.location.path + ": " + trouble);
    last = trouble;
}

std::optional<PropertyList> FilePreferences::copyValue(const std::string& key,
                                                       const std::string& applicationID,
                                                       PreferencesUser user, PreferencesHost host)
{
    auto& from = scope(applicationID, user, host);
    const auto pending = from.pending.find(key);
    if (pending != from.pending.end())
        return pending->second;
    const auto* value = from.snapshot.find(key);
    report(from, from.lastReadTrouble, from.snapshot.reason());
    return value ? std::optional(*value) : std::nullopt;
}

void FilePreferences::setAppValue(const std::string& key, std::optional<PropertyList> value,
                                  const std::string& applicationID)
{
    auto& to = scope(applicationID, PreferencesUser::current, PreferencesHost::any);
    to.pending.insert_or_assign(key, std::move(value));
}

bool FilePreferences::store(Scope& scope)
{
    if (scope.pending.empty())
        return true;
    const auto patience = scope.hasWaitedInVain ? std::chrono::milliseconds::zero() : longestWait;
    scope.snapshot.forget();
    const auto result = mergeIntoPreferences(scope.location, scope.pending, patience);
    scope.hasWaitedInVain = result.status == PreferencesMergeResult::Status::locked;
    report(scope, scope.lastWriteTrouble, result.reason);
    if (result.status != PreferencesMergeResult::Status::done)
        return false;
    if (!result.setAside.empty())
        mLog.write(LogLevel::warning,
                   "a broken preferences file was set aside: " + result.setAside);
    std::erase_if(scope.pending,
                  [&](const auto& each) { return !result.refused.contains(each.first); });
    return result.refused.empty();
}

bool FilePreferences::synchronize(const std::string& applicationID, PreferencesUser user,
                                  PreferencesHost host)
{
    return store(scope(applicationID, user, host));
}

bool FilePreferences::appSynchronize(const std::string& applicationID)
{
    const bool thisHost =
        synchronize(applicationID, PreferencesUser::current, PreferencesHost::current);
    const bool anyHost = synchronize(applicationID, PreferencesUser::current, PreferencesHost::any);
    return thisHost && anyHost;
}

} // namespace farview
