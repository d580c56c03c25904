#pragma once

#include "Applications/Update/UpdateFailure.h"

#include <functional>
#include <optional>
#include <string>

namespace farview
{

/// Where two folders change places in one step. Returns 0 or an errno: EINVAL, ENOSYS or ENOTSUP
/// when the file system cannot do that.
using ExchangeNames = std::function<int(const std::string& left, const std::string& right)>;

/// The system's own.
int exchangeNames(const std::string& left, const std::string& right);

struct BundleExchange {
    std::string bundle;      ///< what is replaced
    std::string replacement; ///< what replaces it, on the same file system
    std::string aside;       ///< a free name there, for the old one where it takes two steps

    /// Puts the replacement in the bundle's place, safe on the disk. Nobody ever finds no bundle or
    /// a half one; where it takes two steps there is none for the moment between them, and when
    /// this process is killed just then, another puts the old one back. On failure the old one is
    /// in its place.
    std::optional<UpdateFailure> run(const ExchangeNames& exchange = exchangeNames) const;

private:
    int replaceInTwoSteps() const;
};

} // namespace farview
