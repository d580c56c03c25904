#include "Platform/Desktop/Screens/Mutter/DisplayConfig.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

const MonitorId one{QStringLiteral("DP-1"), {}, {}, {}};
const MonitorId other{QStringLiteral("DP-2"), {}, {}, {}};

DisplayState row(unsigned serial)
{
    return {serial, {}, {{0, 0, 1, 0, true, {one}}, {1920, 0, 1, 0, false, {other}}}, false};
}

DisplayState column(unsigned serial)
{
    return {serial, {}, {{0, 0, 1, 0, true, {one}}, {0, 1080, 1, 0, false, {other}}}, false};
}

TEST(LayoutJudgeTest, WhatComesWithOtherMonitorsIsMutters)
{
    LayoutJudge judge;
    EXPECT_TRUE(judge.isMutters(column(1), Duration(100)));
    EXPECT_TRUE(judge.isMutters(column(2), Duration(100)));
}

TEST(LayoutJudgeTest, WhatChangesAfterwardsIsTheUsers)
{
    LayoutJudge judge;
    judge.isMutters(row(1), Duration(100));
    EXPECT_FALSE(judge.isMutters(column(1), Duration(101)));
    EXPECT_FALSE(judge.isMutters(row(1), Duration(200)));
}

TEST(LayoutJudgeTest, ARowThatComesSoonIsMutters)
{
    LayoutJudge judge;
    judge.isMutters(column(1), Duration(100));
    EXPECT_TRUE(judge.isMutters(row(1), Duration(101)));
}

TEST(LayoutJudgeTest, ReplacingEndsUntilTheMonitorsChangeAgain)
{
    LayoutJudge judge;
    judge.isMutters(row(1), Duration(100));
    int count = 0;
    while (count < 100 && judge.mayReplace())
        ++count;
    EXPECT_GT(count, 1);
    EXPECT_LT(count, 10);
    judge.isMutters(row(2), Duration(101));
    EXPECT_TRUE(judge.mayReplace());
}

} // namespace
} // namespace farview
