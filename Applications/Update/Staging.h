#pragma once

#include "Applications/Update/UpdateFailure.h"
#include "Platform/Posix/FileDescriptor.h"

#include <optional>
#include <string>

namespace farview
{

/// The private folder beside a bundle in which its next version is made ready: on the same file
/// system, so that the two can change places. Whoever has it holds the bundle's updates: there is
/// one at a time. It goes with this object.
class Staging
{
public:
    /// `bundle` is the bundle's own path.
    explicit Staging(std::string bundle);
    ~Staging();
    Staging(const Staging&) = delete;
    Staging& operator=(const Staging&) = delete;

    /// Makes the folder, empty, for this process alone. What a run that was killed left there goes;
    /// a bundle that it was about to replace is put back. What lies there and can be neither used
    /// nor removed is renamed to "NAME.XXXXXX", with six letters of chance.
    std::optional<UpdateFailure> acquire();
    /// Does that for what was left, if anything was, and lets go of the folder again.
    std::optional<UpdateFailure> tidy();
    void release();

    const std::string& path() const { return mPath; }
    /// Where the old bundle waits while the new one takes its place, where that takes two steps.
    std::string asidePath() const { return mPath + "/old"; }

private:
    std::optional<UpdateFailure> openOwn();
    std::optional<UpdateFailure> lock();
    std::optional<UpdateFailure> tryToAcquire();
    bool clearPath() const;

    std::string mBundle;
    std::string mPath;
    FileDescriptor mFolder;
};

} // namespace farview
