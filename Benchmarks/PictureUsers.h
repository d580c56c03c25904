#pragma once

#include "Tests/Integration/TestPanel.h"

#include <cstdint>
#include <string>

namespace farview
{

/// What the users of both computers do beside looking.

/// As if they had confirmed each other long ago.
void pairBothPrograms();
/// Chooses the device there, once the screen server listens. Throws when it does not.
void chooseDevice(TestPanel& panel, const std::string& address);
/// What is seen of a part of a display that no window covers.
void setBackground(const std::string& display, std::uint32_t colour);

} // namespace farview
