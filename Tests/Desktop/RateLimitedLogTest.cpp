#include "Platform/Desktop/Bus/RateLimitedLog.h"
#include "Platform/Fake/FakeLog.h"
#include "Platform/Fake/FakeRunLoop.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

TEST(RateLimitedLog, WritesOneLineInTenSecondsAndCountsTheRest)
{
    FakeLog log;
    FakeRunLoop clock;
    RateLimitedLog limited(log, clock);
    for (int index = 0; index < 1000; ++index)
        limited.warn("bad");
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].message, "bad");
    clock.advance(Duration{9.9});
    limited.warn("bad");
    ASSERT_EQ(log.lines().size(), 1u);
    clock.advance(Duration{0.2});
    limited.warn("worse");
    limited.warn("worse");
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_EQ(log.lines()[1].message, "worse (1000 more since the last line)");
}

} // namespace
} // namespace farview
