#pragma once

#include <chrono>
#include <string>

namespace farview
{

/// What became of knocking at a message bus.
enum class BusAnswer {
    answers,
    noAddress, ///< nobody says where the bus is
    refused,   ///< nothing listens there
    silent,    ///< something listens and says nothing
    rejects,   ///< it does not let this user in
};

/// Begins to talk to the bus at that address ("unix:path=/run/bus;...": the first that listens) and
/// hangs up again, in at most `limit`. A bus that stopped would hold a library's call for 25
/// seconds. Only local sockets are knocked at; an address of another kind counts as answering.
BusAnswer knockAtBus(const std::string& address, std::chrono::milliseconds limit);

} // namespace farview
