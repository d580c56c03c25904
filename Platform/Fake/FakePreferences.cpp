#include "Platform/Fake/FakePreferences.h"

namespace farview
{
namespace
{

std::optional<PropertyList> find(const FakePreferences::Domain& domain, const std::string& key)
{
    const auto found = domain.find(key);
    return found == domain.end() ? std::nullopt : std::optional(found->second);
}

void put(FakePreferences::Domain& domain, const std::string& key, std::optional<PropertyList> value)
{
    if (value)
        domain.insert_or_assign(key, std::move(*value));
    else
        domain.erase(key);
}

} // namespace

std::optional<PropertyList> FakePreferences::copyValue(const std::string& key,
                                                       const std::string& applicationID,
                                                       PreferencesUser user, PreferencesHost host)
{
    const auto& scope = mScopes[{applicationID, {user, host}}];
    const auto pending = scope.pending.find(key);
    return pending == scope.pending.end() ? find(scope.stored, key) : pending->second;
}

void FakePreferences::setAppValue(const std::string& key, std::optional<PropertyList> value,
                                  const std::string& applicationID)
{
    ++mSetCount;
    auto& scope = mScopes[{applicationID, {PreferencesUser::current, PreferencesHost::any}}];
    scope.pending.insert_or_assign(key, std::move(value));
}

bool FakePreferences::store(const ScopeKey& key)
{
    auto& scope = mScopes[key];
    if (scope.pending.empty())
        return true;
    if (mWritesFail) {
        ++mFailedWriteCount;
        return false;
    }
    ++mWriteCount;
    for (auto& [name, value] : scope.pending)
        put(scope.stored, name, std::move(value));
    scope.pending.clear();
    return true;
}

bool FakePreferences::synchronize(const std::string& applicationID, PreferencesUser user,
                                  PreferencesHost host)
{
    mSynchronizations.push_back({applicationID, user, host, false});
    return store({applicationID, {user, host}});
}

bool FakePreferences::appSynchronize(const std::string& applicationID)
{
    using enum PreferencesHost;
    mSynchronizations.push_back({applicationID, PreferencesUser::current, any, true});
    const bool thisHost = store({applicationID, {PreferencesUser::current, current}});
    const bool anyHost = store({applicationID, {PreferencesUser::current, any}});
    return thisHost && anyHost;
}

void FakePreferences::writeAsAnotherProcess(const std::string& key,
                                            std::optional<PropertyList> value,
                                            const std::string& applicationID, PreferencesUser user,
                                            PreferencesHost host)
{
    put(mScopes[{applicationID, {user, host}}].stored, key, std::move(value));
}

FakePreferences::Domain FakePreferences::stored(const std::string& applicationID,
                                                PreferencesUser user, PreferencesHost host) const
{
    const auto scope = mScopes.find({applicationID, {user, host}});
    return scope == mScopes.end() ? Domain{} : scope->second.stored;
}

std::optional<PropertyList> FakePreferences::storedValue(const std::string& key,
                                                         const std::string& applicationID) const
{
    return find(stored(applicationID), key);
}

bool FakePreferences::hasPending(const std::string& applicationID) const
{
    for (const auto& [key, scope] : mScopes) {
        if (key.first == applicationID && !scope.pending.empty())
            return true;
    }
    return false;
}

} // namespace farview
