#include "Applications/Doctor/LastResort.h"

#include "Tests/Support/ForkedProcess.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

using namespace farview;
using std::chrono::milliseconds;

namespace
{

TEST(LastResort, EndsAProcessWhoseMainThreadHangs)
{
    ForkedProcess process([] {
        const LastResort lastResort(milliseconds(50), [] { return 7; });
        std::this_thread::sleep_for(std::chrono::seconds(30));
    });
    EXPECT_EQ(process.wait(), 7);
}

TEST(LastResort, DoesNothingOnceItIsGone)
{
    ForkedProcess process([] {
        {
            const LastResort lastResort(milliseconds(50), [] { return 7; });
        }
        std::this_thread::sleep_for(milliseconds(200));
    });
    EXPECT_EQ(process.wait(), 0);
}

} // namespace
