#include "Platform/Desktop/Bus/RateLimitedLog.h"

#include <utility>

namespace farview
{
namespace
{

constexpr Duration quietTime{10.0};

}

void RateLimitedLog::warn(const std::string& message)
{
    const Duration now = mClock.now();
    if (mLastLine && now - *mLastLine < quietTime) {
        ++mLeftOut;
        return;
    }
    mLastLine = now;
    const unsigned leftOut = std::exchange(mLeftOut, 0);
    const std::string note =
        leftOut > 0 ? " (" + std::to_string(leftOut) + " more since the last line)" : "";
    mLog.write(LogLevel::warning, message + note);
}

} // namespace farview
