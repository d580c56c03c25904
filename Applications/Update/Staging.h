#pragma once

#include "Applications/Update/UpdateFailure.h"
#include "Platform/Posix/FileDescriptor.h"

#include <optional>
#include <string>

namespace farview
{

/// The private folder beside a bundle in which its next version is made ready: on the same file
/// system, so that the two can change places. The folder is also the lock that keeps two updates of
/// one bundle apart. It is removed with this object.
class Staging
{
public:
    /// `bundle` is its canonical path.
    explicit Staging(std::string bundle);
    ~Staging();
    Staging(const Staging&) = delete;
    Staging& operator=(const Staging&) = delete;

    /// Makes the folder, empty, for this process alone. What a killed run left there is removed; a
    /// bundle that it was about to replace is put back. A folder that can be neither used nor
    /// removed is renamed: six random letters are added.
    std::optional<UpdateFailure> acquire();
    /// Does the same if a killed run left something, and removes the folder.
    std::optional<UpdateFailure> removeLeftovers();
    void release();

    const std::string& path() const { return mPath; }
    /// Where the old bundle lies while the new one takes its place in two steps.
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
