#pragma once

#include <cstdint>

/// The platform's level as major << 16 | minor << 8 | bug-fix, in plain binary numbers in spite of
/// the name: 10.7.0 is 0x0A0700. 10.0.0 when the platform does not tell.
std::uint32_t BCDSystemVersionFunction();

/// The same, under the application's name for it.
std::uint32_t BCDSystemVersion();
