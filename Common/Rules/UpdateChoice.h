#pragma once

#include "Platform/Types/PropertyList.h"
#include "Platform/Types/UpdateProblem.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// When a feed was signed, and until when it counts.
struct FeedDates {
    Date signedAt;
    Date expires;
};

/// Why a genuine feed does not count now; nothing when it does. `newest` is when the newest feed
/// was signed that this user has had; 1970 when there was none.
std::optional<UpdateProblem> problemOf(const FeedDates& feed, Date newest, Date now);

/// A version that a feed offers. All of it comes from outside.
struct UpdateItem {
    std::string version;              ///< a version that can be compared
    std::string minimumSystemVersion; ///< the same, or empty: any system will do
    std::string notes;                ///< plain text
    std::string address;              ///< of the archive
    std::string signature;            ///< of the archive, Base64
    std::uint64_t length = 0;         ///< of the archive, in bytes
};

/// What is to be done about a feed.
struct UpdateChoice {
    enum class Kind {
        current,      ///< nothing newer than what is installed
        found,        ///< `item` is newer
        systemTooOld, ///< something is newer, and nothing of that suits the system
    };

    Kind kind = Kind::current;
    std::string offered;            ///< the newest version listed; `installed` when none is
    std::optional<UpdateItem> item; ///< of `found`
};

/// The newest version that suits the system, when it is newer than the installed one. Of two items
/// with one version the first counts. All three versions must be such that can be compared.
UpdateChoice chooseUpdate(const std::vector<UpdateItem>& items, const std::string& installed,
                          const std::string& system);

} // namespace farview
