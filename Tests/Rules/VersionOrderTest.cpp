#include "Common/Rules/VersionOrder.h"

#include <gtest/gtest.h>

#include <string>

namespace farview
{
namespace
{

TEST(VersionOrder, ComparesNumberByNumber)
{
    struct Row {
        const char* older;
        const char* newer;
    };
    const Row rows[] = {
        {"1.0", "1.1"},           {"1.9", "1.10"},
        {"1", "1.0.1"},           {"0.9.9", "1"},
        {"1.2.3", "1.10.0"},      {"2.99", "10"},
        {"1.08", "1.9"},          {"18446744073709551615", "18446744073709551616"},
        {"1.0.0.0", "1.0.0.0.1"},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(compareVersions(row.older, row.newer) < 0) << row.older << " " << row.newer;
        EXPECT_TRUE(compareVersions(row.newer, row.older) > 0) << row.older << " " << row.newer;
    }
}

TEST(VersionOrder, WhatIsMissingIsZeroAndLeadingZerosMeanNothing)
{
    for (const char* same : {"1", "1.0", "1.0.0", "01.0", "1.00"})
        EXPECT_TRUE(compareVersions(same, "1.0") == 0) << same;
    EXPECT_TRUE(compareVersions("0", "0.0") == 0);
}

TEST(VersionOrder, KnowsAVersionWhenItSeesOne)
{
    for (const char* good : {"0", "1.0", "1.10.2", "15644", "007"})
        EXPECT_TRUE(isVersion(good)) << good;
    for (const char* bad :
         {"", ".", "1.", ".1", "1..2", "1.0b2", "-1", "+1", " 1", "1 ", "1,0", "v1"})
        EXPECT_FALSE(isVersion(bad)) << bad;
    EXPECT_TRUE(isVersion(std::string(64, '1')));
    EXPECT_FALSE(isVersion(std::string(65, '1')));
}

} // namespace
} // namespace farview
