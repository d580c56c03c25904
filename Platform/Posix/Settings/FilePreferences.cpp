#include "Platform/Posix/Settings/FilePreferences.h"

#include "Platform/Log.h"

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

constexpr std::chrono::milliseconds longestWait{1000};
constexpr std::chrono::milliseconds noWait{0};
constexpr Duration firstPause{0.01};
constexpr Duration longestPause{1.0};

} // namespace

FilePreferences::FilePreferences(PreferencesLocations locations, Log& log, RunLoop* loop)
    : mLocations(std::move(locations)), mLog(log), mLoop(loop), mPause(firstPause)
{
}

FilePreferences::~FilePreferences()
{
    // The last chance. The loop does not run any more.
    for (auto& [key, each] : mScopes) {
        if (mLoop && each.isHeldUp)
            write(each, longestWait);
    }
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
    const bool isStored = write(scope, mLoop || scope.isHeldUp ? noWait : longestWait);
    if (mLoop && scope.isHeldUp)
        tryAgainLater();
    return isStored;
}

bool FilePreferences::write(Scope& scope, std::chrono::milliseconds patience)
{
    if (scope.pending.empty())
        return true;
    scope.snapshot.forget();
    const auto result = mergeIntoPreferences(scope.location, scope.pending, patience);
    scope.isHeldUp = result.status == PreferencesMergeResult::Status::locked;
    // Others write for some milliseconds; one that stands still is worth a line.
    if (!scope.isHeldUp || !mLoop || mPause > firstPause)
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

void FilePreferences::tryAgainLater()
{
    if (std::exchange(mIsTryingLater, true))
        return;
    mLoop->performAfterDelay(mPause, mLife, [this] { tryAgain(); });
    mPause = std::min(2 * mPause, longestPause);
}

void FilePreferences::tryAgain()
{
    bool isLate = false;
    bool isHeldUp = false;
    for (auto& [key, each] : mScopes) {
        isLate = (each.isHeldUp && write(each, noWait)) || isLate;
        isHeldUp = isHeldUp || each.isHeldUp;
    }
    mIsTryingLater = false;
    if (isHeldUp)
        tryAgainLater();
    else
        mPause = firstPause;
    if (isLate)
        tellLateWrite();
}

void FilePreferences::tellLateWrite()
{
    for (const auto& each : std::vector(mLateWriteActions)) {
        if (const auto action = each.lock())
            (*action)();
    }
}

Subscription FilePreferences::observeLateWrites(std::function<void()> action)
{
    const auto kept = std::make_shared<std::function<void()>>(std::move(action));
    std::erase_if(mLateWriteActions, [](const auto& each) { return each.expired(); });
    mLateWriteActions.push_back(kept);
    return Subscription([kept] {});
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
