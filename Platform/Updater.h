#pragma once

#include "Platform/Types/Object.h"
#include "Platform/Types/UpdateStatus.h"

#include <memory>
#include <string>
#include <utility>

namespace farview
{

class Updater;

/// One update, as those are told of it who have to prepare.
class PendingUpdate final : public Object
{
public:
    explicit PendingUpdate(std::string version) : mVersion(std::move(version)) {}
    const std::string& version() const { return mVersion; }

private:
    std::string mVersion;
};

/// Hears of an updater.
class UpdaterDelegate
{
public:
    virtual ~UpdaterDelegate() = default;

    /// The updater's status is another one.
    virtual void didChangeStatus(Updater& updater) = 0;
    /// The update (`item`) is about to take the place of the bundle; it does as soon as this
    /// returns. `updater` and `item` are an `Updater` and a `PendingUpdate`.
    virtual void willInstallUpdate(Object* updater, Object* item) = 0;
};

/// Replaces one bundle by its next version, from where the bundle's Info.plist says, and only by
/// what is signed with the key there. Nothing waits for it: each operation returns at once, and how
/// it goes on is told to the delegate. Main thread only.
///
/// An operation that does not fit the status is ignored.
class Updater : public Object
{
public:
    /// Whether somebody looks for updates unasked. Only kept: who does it asks here.
    virtual bool automaticallyChecksForUpdates() const = 0;
    virtual void setAutomaticallyChecksForUpdates(bool flag) = 0;

    virtual void setDelegate(std::weak_ptr<UpdaterDelegate> delegate) = 0;
    virtual const UpdateStatus& status() const = 0;

    /// Looks for a newer version, unless something is under way. Ends as current, found, cancelled
    /// or failed.
    virtual void checkForUpdates() = 0;
    /// Fetches and verifies the version that was found. Ends as ready, cancelled or failed; as
    /// found, when there is yet another version by now.
    virtual void downloadUpdate() = 0;
    /// Puts the version that is ready in place. Ends as installed or failed; cannot be taken back.
    virtual void installUpdate() = 0;
    /// Ends what is under way; nothing was changed then. An installation goes on.
    virtual void cancel() = 0;
};

/// Keeps one updater for each bundle.
class Updaters
{
public:
    virtual ~Updaters() = default;

    /// The updater of the bundle at that path; never null.
    virtual std::shared_ptr<Updater> updaterForBundle(const std::string& bundlePath) = 0;
};

} // namespace farview
