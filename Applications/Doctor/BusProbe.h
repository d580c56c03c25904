#pragma once

#include "Applications/Doctor/Finding.h"
#include "Platform/Desktop/Bus/BusHandshake.h"

#include <string>

namespace farview
{

struct BusFacts {
    std::string sessionAddress; ///< empty when nobody says where the bus is
    BusAnswer session = BusAnswer::noAddress;
    std::string systemAddress;
    BusAnswer system = BusAnswer::noAddress;
    /// Of the bus at the system's fixed address, the only one that is trusted about rights.
    BusAnswer polkit = BusAnswer::noAddress;
    /// Whether the system's programs use the session bus; they use none that belongs to another
    /// user.
    bool isSessionUsed = false;
};

/// Checks both buses, for at most a second. `isSessionUsed` is left to who has a connection.
BusFacts busFacts();
Findings findingsAboutBus(const BusFacts& facts);

} // namespace farview
