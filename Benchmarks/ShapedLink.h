#pragma once

#include <thread>

namespace farview
{

/// Who connects to this address reaches a server of this computer through the shaped link.
inline constexpr const char* kShapedAddress = "10.97.0.2";

/// A bad link from this computer to itself, for as long as the thread lives: 30 Mbit/s with a queue
/// of 100 ms, 10 ms each way, and 1 % of the packets is lost. Needs a network of its own; throws
/// where the system allows no such link.
std::jthread carryShapedLink();

} // namespace farview
