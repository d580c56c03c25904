#pragma once

#include "Platform/Log.h"
#include "Platform/RunLoop.h"

#include <optional>
#include <string>

namespace farview
{

/// Writes warnings that a stranger can cause: at most one line in ten seconds, so that nobody can
/// fill the log. The next line tells how many were left out.
class RateLimitedLog
{
public:
    RateLimitedLog(Log& log, const RunLoop& clock) : mLog(log), mClock(clock) {}

    void warn(const std::string& message);

private:
    Log& mLog;
    const RunLoop& mClock;
    std::optional<Duration> mLastLine;
    unsigned mLeftOut = 0;
};

} // namespace farview
