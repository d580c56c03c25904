#include "Common/GetPID.h"

#include "Platform/Fake/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <limits>

using farview::FakePlatform;
using testing::Each;
using testing::ElementsAre;

namespace
{

class GetPIDTest : public testing::Test
{
protected:
    GetPIDTest() { pids.fill(-7); }

    std::int32_t find(const char* name, std::uint32_t capacity = 4)
    {
        return GetAllPIDsForProcessName(name, pids.data(), capacity, &count, &error);
    }
    void addServers(int number)
    {
        for (int each = 0; each < number; ++each) {
            fake.processTable.add(10 + each, "ScreenCapture");
            fake.processTable.add(100 + each, "sh");
        }
    }

    FakePlatform fake;
    farview::Platform::Scope scope{fake.platform()};
    std::array<std::int32_t, 4> pids{};
    std::uint32_t count = 99;
    std::int32_t error = 99;
};

TEST_F(GetPIDTest, FindsEveryProcessOfThatNameInTableOrder)
{
    addServers(2);
    EXPECT_EQ(find("ScreenCapture"), 0);
    EXPECT_THAT(pids, ElementsAre(10, 11, 0, 0)) << "zeroed behind the results";
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(error, 0);
}

TEST_F(GetPIDTest, TellsThatNoneRuns)
{
    fake.processTable.add(3, "sh");
    EXPECT_EQ(find("ScreenCapture"), -1);
    EXPECT_THAT(pids, Each(0));
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(error, 0);
}

TEST_F(GetPIDTest, AMissingArgumentOrAZeroCapacityIsInvalidAndTouchesNothing)
{
    addServers(1);
    EXPECT_EQ(find("ScreenCapture", 0), -2);
    EXPECT_EQ(GetAllPIDsForProcessName(nullptr, pids.data(), 4, &count, &error), -2);
    EXPECT_EQ(GetAllPIDsForProcessName("x", nullptr, 4, &count, &error), -2);
    EXPECT_EQ(GetAllPIDsForProcessName("x", pids.data(), 4, nullptr, &error), -2);
    EXPECT_THAT(pids, Each(-7));
    EXPECT_EQ(count, 99U);
    EXPECT_EQ(error, 99);
}

TEST_F(GetPIDTest, TellsWhyTheTableCannotBeRead)
{
    fake.processTable.setSizeError(EPERM);
    EXPECT_EQ(find("ScreenCapture"), -3);
    EXPECT_EQ(error, EPERM);
    EXPECT_EQ(count, 0U);
    EXPECT_THAT(pids, Each(0));
}

TEST_F(GetPIDTest, TellsThatThereIsNoMemoryForTheTable)
{
    fake.processTable.setClaimedSize(std::numeric_limits<std::size_t>::max());
    EXPECT_EQ(find("ScreenCapture"), -4);
    EXPECT_EQ(error, 12);
}

TEST_F(GetPIDTest, TellsThatMoreRunThanFit)
{
    addServers(3);
    EXPECT_EQ(find("ScreenCapture", 2), -5);
    EXPECT_EQ(count, 2U);
    EXPECT_THAT(pids, ElementsAre(10, 11, -7, -7));
    EXPECT_EQ(find("ScreenCapture", 3), 0) << "as many as fit is no error";
    EXPECT_EQ(count, 3U);
}

TEST_F(GetPIDTest, TheErrorNumberIsOptional)
{
    addServers(1);
    EXPECT_EQ(GetAllPIDsForProcessName("ScreenCapture", pids.data(), 4, &count, nullptr), 0);
    fake.processTable.setSizeError(EPERM);
    EXPECT_EQ(GetAllPIDsForProcessName("ScreenCapture", pids.data(), 4, &count, nullptr), -3);
}

TEST_F(GetPIDTest, AnotherNameOrAProcessWithoutAnIdentifierDoesNotMatch)
{
    fake.processTable.add(5, "ScreenCaptureXY");
    fake.processTable.add(6, "ScreenCaptur");
    fake.processTable.add(7, "screencapture");
    fake.processTable.add(0, "ScreenCapture");
    fake.processTable.add(-4, "ScreenCapture");
    EXPECT_EQ(find("ScreenCapture"), -1);
}

TEST_F(GetPIDTest, OnlyTheFirstSixteenBytesAreCompared)
{
    fake.processTable.add(5, "FarviewStatusItem");
    EXPECT_EQ(find("FarviewStatusItem"), 0);
    EXPECT_EQ(find("FarviewStatusIteZZZ"), 0);
    EXPECT_EQ(find("FarviewStatusXtem"), -1);
}

TEST_F(GetPIDTest, AsksAgainForATableThatGrewMeanwhile)
{
    addServers(1);
    fake.processTable.setBeforeContents([this] { fake.processTable.add(77, "ScreenCapture"); });
    EXPECT_EQ(find("ScreenCapture"), 0);
    EXPECT_THAT(pids, ElementsAre(10, 77, 0, 0));
    EXPECT_EQ(fake.processTable.sizeCount(), 2);
    EXPECT_EQ(fake.processTable.contentsCount(), 2);
}

TEST_F(GetPIDTest, AsksAgainAsOftenAsTheReadFails)
{
    addServers(1);
    fake.processTable.setContentsErrors({ENOMEM, ENOMEM, EIO, ENOMEM});
    EXPECT_EQ(find("ScreenCapture"), 0);
    EXPECT_EQ(fake.processTable.sizeCount(), 5);
    EXPECT_EQ(error, 0);
}

TEST_F(GetPIDTest, ATableThatShrankMeanwhileIsReadAsItIsNow)
{
    addServers(2);
    fake.processTable.setBeforeContents([this] { fake.processTable.remove(11); });
    EXPECT_EQ(find("ScreenCapture"), 0);
    EXPECT_THAT(pids, ElementsAre(10, 0, 0, 0));
}

TEST_F(GetPIDTest, TheOneProcessOfANameIsFoundAndNoneOtherwise)
{
    EXPECT_EQ(GetPIDForProcessName("ScreenCapture"), -1);
    addServers(1);
    EXPECT_EQ(GetPIDForProcessName("ScreenCapture"), 10);
    EXPECT_EQ(GetPIDForProcessName(nullptr), -1);
    addServers(1);
    EXPECT_EQ(GetPIDForProcessName("ScreenCapture"), -1) << "two run";
    fake.processTable.setSizeError(EPERM);
    EXPECT_EQ(GetPIDForProcessName("sh"), -1);
}

} // namespace
