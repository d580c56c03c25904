#pragma once

#include "Applications/Update/UpdateFailure.h"

#include <functional>
#include <optional>
#include <string>

namespace farview
{

/// The system calls that rename folders, for tests to replace. Each returns 0 or an errno.
struct RenameCalls {
    using Change = std::function<int(const std::string& from, const std::string& to)>;

    RenameCalls();

    /// Swaps two names in one step; EINVAL, ENOSYS or ENOTSUP where the file system cannot.
    Change exchange;
    Change rename;
};

/// Replaces an old bundle by a new one.
struct BundleExchange {
    std::string bundle;      ///< what is replaced
    std::string replacement; ///< what replaces it, on the same file system
    std::string aside;       ///< a free name there, for the old one where it takes two steps

    /// Puts the replacement in the bundle's place, safe on the disk. There is a whole bundle at
    /// every moment, except between the two steps that some file systems need; when this process is
    /// killed just then, another process puts the old bundle back. On failure the old bundle stays.
    std::optional<UpdateFailure> run(const RenameCalls& changes) const;

private:
    int replaceInTwoSteps(const RenameCalls& changes) const;
};

} // namespace farview
