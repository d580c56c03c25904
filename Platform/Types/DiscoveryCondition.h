#pragma once

namespace farview
{

/// What stands between us and the network's services.
enum class DiscoveryCondition {
    starting,    ///< not known yet
    working,     ///< services can be found
    refused,     ///< a discovery daemon runs and allows no other beside it, but cannot be reached
    unavailable, ///< no daemon, and searching by ourselves failed (no network interface, for
                 ///< example)
};

} // namespace farview
