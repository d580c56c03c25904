#pragma once

#include "Platform/NotificationCenter.h"

#include <cstddef>
#include <string>

namespace farview
{

/// A notification between processes, as it travels.
struct PostedNotification {
    std::string name;
    std::string object; ///< empty: none
    DistributedNotificationCenter::TextUserInfo userInfo;
    unsigned options = 0;
    std::string session; ///< the poster's login session; empty: unknown

    bool operator==(const PostedNotification&) const = default;
};

/// No notification carries more than this, counted in bytes over all its texts; one that does is
/// not sent, and not taken.
inline constexpr std::size_t largestNotification = 64 * 1024;

} // namespace farview
