#pragma once

#include "Platform/Clock.h"

namespace farview
{

/// The computer's own clock.
class SystemClock final : public Clock
{
public:
    std::chrono::system_clock::time_point date() override
    {
        return std::chrono::system_clock::now();
    }
};

} // namespace farview
