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

TEST_F(SystemVersionTest, AnOldPackedAnswerIsReadAsDecimalDigits)
{
    fake.systemVersion.setAnswer(SystemVersionQuery::packed, 0x1039);
    EXPECT_EQ(BCDSystemVersionFunction(), 0x0A0309U);
    fake.systemVersion.setAnswer(SystemVersionQuery::packed, 0x0922);
    EXPECT_EQ(BCDSystemVersionFunction(), 0x090202U);
}

TEST_F(SystemVersionTest, TheSingleAnswersCountFromTheFirstPackedOneThatNeedsThem)
{
    fake.systemVersion.setVersion(10, 11, 10);
    fake.systemVersion.setAnswer(SystemVersionQuery::packed, 0x103F);
    EXPECT_EQ(BCDSystemVersionFunction(), 0x0A030FU);
    fake.systemVersion.setAnswer(SystemVersionQuery::packed, 0x1040);
    EXPECT_EQ(BCDSystemVersionFunction(), 0x0A0B0AU);
}

TEST_F(SystemVersionTest, APlatformThatDoesNotTellIsTheFirst)
{
    fake.systemVersion.setAnswer(SystemVersionQuery::packed, std::nullopt);
    EXPECT_EQ(BCDSystemVersionFunction(), 0x0A0000U);
}

TEST_F(SystemVersionTest, AMissingSingleAnswerLeavesItsField)
{
    fake.systemVersion.setVersion(11, 6, 8);
    fake.systemVersion.setAnswer(SystemVersionQuery::major, std::nullopt);
    EXPECT_EQ(BCDSystemVersionFunction(), 0x0A0608U);
    fake.systemVersion.setAnswer(SystemVersionQuery::minor, std::nullopt);
    EXPECT_EQ(BCDSystemVersionFunction(), 0x0A0008U);
    fake.systemVersion.setAnswer(SystemVersionQuery::bugFix, std::nullopt);
    EXPECT_EQ(BCDSystemVersionFunction(), 0x0A0000U);
}

TEST_F(SystemVersionTest, EachFieldIsCutToAByte)
{
    fake.systemVersion.setAnswer(SystemVersionQuery::packed, 0x1099);
    fake.systemVersion.setAnswer(SystemVersionQuery::major, 0x10A);
    fake.systemVersion.setAnswer(SystemVersionQuery::minor, 0x20B);
    fake.systemVersion.setAnswer(SystemVersionQuery::bugFix, -1);
    EXPECT_EQ(BCDSystemVersionFunction(), 0x0A0BFFU);
}

TEST_F(SystemVersionTest, TheApplicationsNameForItTellsTheSame)
{
    fake.systemVersion.setVersion(10, 9, 5);
    EXPECT_EQ(BCDSystemVersion(), 0x0A0905U);
}

} // namespace
