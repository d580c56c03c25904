#pragma once

#include <string>

namespace farview
{

// What farview-device does instead of serving. Each prints its outcome and returns the status that
// the program ends with; the application object must exist.

/// Nobody answers on the session bus, because there is none.
inline constexpr int kNoSessionBus = 3;

/// Tells the device that runs on this computer that the user sees those digits. 0: it accepted; 1:
/// no device here shows them; `kNoSessionBus`.
int acceptDigits(const std::string& digits);
/// Lists the computers that may use this user's device.
int listKnownComputers();
/// Forgets the one whose key begins so. 1: none or several do, or it cannot be stored.
int forgetComputer(const std::string& keyBeginning);

} // namespace farview
