#include "Common/Rules/Connection.h"

#include <gtest/gtest.h>

using namespace farview;

namespace
{

using HostNames = std::vector<std::optional<std::string>>;

std::optional<std::size_t> deviceFor(const HostNames& names, std::string reported)
{
    return deviceForReportedName(names, &reported);
}

TEST(DeviceForReportedName, IsTheFirstOfExactlyThatHostName)
{
    const HostNames names{"a.local", std::nullopt, "b.local", "b.local"};
    EXPECT_EQ(deviceFor(names, "b.local"), 2u);
    EXPECT_EQ(deviceFor(names, "B.local"), std::nullopt);
    EXPECT_EQ(deviceFor(names, "b.local."), std::nullopt);
    EXPECT_EQ(deviceFor(names, "c.local"), std::nullopt);
}

TEST(DeviceForReportedName, NoNameNeverEqualsNoName)
{
    const HostNames names{std::nullopt, ""};
    EXPECT_EQ(deviceForReportedName(names, nullptr), std::nullopt);
    EXPECT_EQ(deviceFor(names, ""), std::nullopt);
}

TEST(ConnectionByAddress, IsTheStoredAddressElseTheKnownOneElseTheReportedOne)
{
    const auto none = std::nullopt;
    EXPECT_EQ(connectionByAddress("10.0.0.5", true, "10.0.0.9", "10.0.0.7"),
              (ConnectionByAddress{"10.0.0.5", "10.0.0.5", none}))
        << "remembered as typed";
    EXPECT_EQ(connectionByAddress("pad.local", false, "10.0.0.9", "10.0.0.7"),
              (ConnectionByAddress{none, none, "10.0.0.9"}))
        << "becomes the device in use";
    EXPECT_EQ(connectionByAddress("", false, none, "10.0.0.7"),
              (ConnectionByAddress{"10.0.0.7", none, none}));
    EXPECT_EQ(connectionByAddress("", false, none, none), ConnectionByAddress{});
}

QueryResultStep step(const std::string& name, bool anyDevice)
{
    return queryResultStep(&name, anyDevice);
}

TEST(QueryResultStep, WaitsForDevicesUnlessItNamesNoneOrAnAddress)
{
    const auto later = QueryResultStep::tryAgainLater;
    const auto handle = QueryResultStep::handle;
    for (const bool anyDevice : {true, false}) {
        EXPECT_EQ(queryResultStep(nullptr, anyDevice), QueryResultStep::ignore);
        EXPECT_EQ(step("", anyDevice), QueryResultStep::ignore);
        EXPECT_EQ(step("Other", anyDevice), handle);
        EXPECT_EQ(step("pad.local", anyDevice), anyDevice ? handle : later);
        EXPECT_EQ(step("other", anyDevice), anyDevice ? handle : later);
    }
}

TEST(SwitchOutOfStep, OnlyWhenItContradictsAKnownResult)
{
    EXPECT_TRUE(switchIsOutOfStep(0, 0));
    EXPECT_TRUE(switchIsOutOfStep(-1, 1));
    EXPECT_FALSE(switchIsOutOfStep(0, 1));
    EXPECT_FALSE(switchIsOutOfStep(-1, 0));
    for (const int failure : {-2, -3, -4, -5, 1}) {
        EXPECT_FALSE(switchIsOutOfStep(failure, 0)) << failure;
        EXPECT_FALSE(switchIsOutOfStep(failure, 1)) << failure;
    }
    EXPECT_FALSE(switchIsOutOfStep(0, -1)) << "a switch on its way";
    EXPECT_FALSE(switchIsOutOfStep(-1, -1));
}

TEST(ReportedText, MayBeMissingOrOfAnyUsualLength)
{
    const std::string longest(1024, 'x');
    const std::string tooLong(1025, 'x');
    EXPECT_TRUE(isAcceptableReportedText(nullptr));
    EXPECT_TRUE(isAcceptableReportedText(&longest));
    EXPECT_FALSE(isAcceptableReportedText(&tooLong));
}

} // namespace
