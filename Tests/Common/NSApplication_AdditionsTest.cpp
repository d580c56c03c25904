#include "Common/NSApplication_Additions.h"

#include "Platform/Fake/FakePlatform.h"

#include <gtest/gtest.h>

using farview::SystemVersionQuery;

namespace
{

class SystemVersionTest : public testing::Test
{
protected:
    farview::FakePlatform fake;
    farview::Platform::Scope scope{fake.platform()};
};

TEST_F(SystemVersionTest, IsPackedAsPlainNumbers)
{
    fake.systemVersion.setVersion(10, 6, 8);
    EXPECT_EQ(BCDSystemVersionFunction(), 0x0A0608U);
    fake.systemVersion.setVersion(10, 7, 0);
    EXPECT_EQ(BCDSystemVersionFunction(), 0x0A0700U);
    fake.systemVersion.setVersion(10, 14, 12);
    EXPECT_EQ(BCDSystemVersionFunction(), 0x0A0E0CU);
}

TEST_F(SystemVersionTest, IsMadeOfThePackedOrTheSingleAnswers)
{
    using Answer = std::optional<std::int32_t>;
    struct Row {
        const char* what;
        Answer packed;
        Answer major;
        Answer minor;
        Answer bugFix;
        std::uint32_t expected;
    };
    const Answer none;
    const Row rows[] = {
        {"an old packed answer in decimal digits", 0x1039, none, none, none, 0x0A0309},
        {"a major version below ten", 0x0922, none, none, none, 0x090202},
        {"the last that needs no single ones", 0x103F, 10, 11, 10, 0x0A030F},
        {"the first that needs them", 0x1040, 10, 11, 10, 0x0A0B0A},
        {"a platform that does not tell", none, 11, 6, 8, 0x0A0000},
        {"no major version", 0x1168, none, 6, 8, 0x0A0608},
        {"no minor version either", 0x1168, none, none, 8, 0x0A0008},
        {"no single answer", 0x1168, none, none, none, 0x0A0000},
        {"fields beyond a byte", 0x1099, 0x10A, 0x20B, -1, 0x0A0BFF},
    };
    for (const Row& row : rows) {
        fake.systemVersion.setAnswer(SystemVersionQuery::packed, row.packed);
        fake.systemVersion.setAnswer(SystemVersionQuery::major, row.major);
        fake.systemVersion.setAnswer(SystemVersionQuery::minor, row.minor);
        fake.systemVersion.setAnswer(SystemVersionQuery::bugFix, row.bugFix);
        EXPECT_EQ(BCDSystemVersionFunction(), row.expected) << row.what;
    }
}

TEST_F(SystemVersionTest, TheApplicationsNameForItTellsTheSame)
{
    fake.systemVersion.setVersion(10, 9, 5);
    EXPECT_EQ(BCDSystemVersion(), 0x0A0905U);
}

} // namespace
