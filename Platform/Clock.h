#pragma once

#include <chrono>

namespace farview
{

/// What time it is for people. What has to wait follows the run loop instead.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual std::chrono::system_clock::time_point date() = 0;
};

} // namespace farview
