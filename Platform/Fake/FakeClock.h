#pragma once

#include "Platform/Clock.h"

namespace farview
{

/// Stands still at 2026-01-02 03:04:05 UTC, or where tests set it.
class FakeClock final : public Clock
{
public:
    std::chrono::system_clock::time_point date() override { return mDate; }
    void setDate(std::chrono::system_clock::time_point date) { mDate = date; }

private:
    std::chrono::system_clock::time_point mDate{std::chrono::seconds(1767323045)};
};

} // namespace farview
