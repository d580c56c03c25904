#pragma once

#include "Platform/Types/PropertyList.h"
#include "Platform/Types/Subscription.h"

#include <functional>
#include <optional>
#include <string>

namespace farview
{

/// Whose value: the current user's, or a value preset for all.
enum class PreferencesUser { current, any };
/// Where it holds: on this computer only, or on any that shares the user's files.
enum class PreferencesHost { current, any };

/// Settings that outlive a process, in named domains, each with four scopes (user x host).
///
/// A value set here reads back as set at once; it becomes durable and visible to other processes at
/// the next synchronize, and is kept and retried there until it could be written. Values that
/// others wrote are seen at the next read. Main thread only; no operation fails or waits.
class Preferences
{
public:
    virtual ~Preferences() = default;

    /// The first value found for the key in: current user and host, current user and any host, any
    /// user and current host, any user and host.
    std::optional<PropertyList> copyAppValue(const std::string& key,
                                             const std::string& applicationID);
    /// The value in one scope.
    virtual std::optional<PropertyList> copyValue(const std::string& key,
                                                  const std::string& applicationID,
                                                  PreferencesUser user, PreferencesHost host) = 0;
    /// Sets (or, with nothing, removes) the current user's value for any host.
    virtual void setAppValue(const std::string& key, std::optional<PropertyList> value,
                             const std::string& applicationID) = 0;
    /// Writes what is pending in one scope. False when it could not be written (it stays pending).
    virtual bool synchronize(const std::string& applicationID, PreferencesUser user,
                             PreferencesHost host) = 0;
    /// Writes what is pending in the current user's two scopes.
    virtual bool appSynchronize(const std::string& applicationID) = 0;
    /// `action` is called, on a later turn, when something has been written that no synchronize
    /// could write because another process was writing. Ends with the handle.
    virtual Subscription observeLateWrites(std::function<void()> action) = 0;
};

} // namespace farview
