#pragma once

#include "Applications/Update/UpdateFailure.h"

#include <functional>
#include <optional>
#include <string>

namespace farview
{

/// The system's ways to give folders other names. Each returns 0 or an errno.
struct NameChanges {
    using Change = std::function<int(const std::string& from, const std::string& to)>;

    NameChanges();

    /// Two names change places in one step; EINVAL, ENOSYS or ENOTSUP where the file system cannot.
    Change exchange;
    Change rename;
};

/// How a new bundle takes the place of an old one.
struct BundleExchange {
    std::string bundle;      ///< what is replaced
    std::string replacement; ///< what replaces it, on the same file system
    std::string aside;       ///< a free name there, for the old one where it takes two steps

    /// Puts the replacement in the bundle's place, safe on the disk. Nobody ever finds a half
    /// bundle there. Where it takes two steps there is none for the moment between them, and when
    /// this process is killed just then, another puts the old one back. On failure the old one is
    /// in its place.
    std::optional<UpdateFailure> run(const NameChanges& changes) const;

private:
    int replaceInTwoSteps(const NameChanges& changes) const;
};

} // namespace farview
