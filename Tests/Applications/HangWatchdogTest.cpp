#include "Applications/Doctor/HangWatchdog.h"

#include "Tests/Support/ForkedProcess.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

using namespace farview;
using std::chrono::milliseconds;

namespace
{

TEST(HangWatchdog, EndsAProcessWhoseMainThreadHangs)
{
    ForkedProcess process([] {
        const HangWatchdog watchdog(milliseconds(50), [] { return 7; });
        std::this_thread::sleep_for(std::chrono::seconds(30));
    });
    EXPECT_EQ(process.wait(), 7);
}

TEST(HangWatchdog, DoesNothingOnceItIsGone)
{
    ForkedProcess process([] {
        {
            const HangWatchdog watchdog(milliseconds(50), [] { return 7; });
        }
        std::this_thread::sleep_for(milliseconds(200));
    });
    EXPECT_EQ(process.wait(), 0);
}

} // namespace
