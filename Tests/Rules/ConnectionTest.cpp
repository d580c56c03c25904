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

TEST(ConnectionByAddress, AStoredAddressIsTheOneAndIsRememberedAsTyped)
{
    const ConnectionByAddress expected{"10.0.0.5", "10.0.0.5", std::nullopt};
    EXPECT_EQ(connectionByAddress("10.0.0.5", true, "10.0.0.9", "10.0.0.7"), expected);
}

TEST(ConnectionByAddress, ElseTheKnownAddressBecomesTheDeviceInUse)
{
    const ConnectionByAddress expected{std::nullopt, std::nullopt, "10.0.0.9"};
    EXPECT_EQ(connectionByAddress("pad.local", false, "10.0.0.9", "10.0.0.7"), expected);
}

TEST(ConnectionByAddress, ElseTheReportedAddressIsTaken)
{
    const ConnectionByAddress expected{"10.0.0.7", std::nullopt, std::nullopt};
    EXPECT_EQ(connectionByAddress("", false, std::nullopt, "10.0.0.7"), expected);
    EXPECT_EQ(connectionByAddress("", false, std::nullopt, std::nullopt), ConnectionByAddress{});
}

QueryResultStep step(const std::string& name, bool anyDevice)
{
    return queryResultStep(&name, anyDevice);
}

TEST(QueryResultStep, ANamelessResultIsIgnored)
{
    EXPECT_EQ(queryResultStep(nullptr, true), QueryResultStep::ignore);
    EXPECT_EQ(queryResultStep(nullptr, false), QueryResultStep::ignore);
    EXPECT_EQ(step("", true), QueryResultStep::ignore);
    EXPECT_EQ(step("", false), QueryResultStep::ignore);
}

TEST(QueryResultStep, ANameWaitsUntilDevicesAreKnown)
{
    EXPECT_EQ(step("pad.local", false), QueryResultStep::tryAgainLater);
    EXPECT_EQ(step("pad.local", true), QueryResultStep::handle);
}

TEST(QueryResultStep, AConnectionByAddressNeedsNoDevices)
{
    EXPECT_EQ(step("Other", false), QueryResultStep::handle);
    EXPECT_EQ(step("Other", true), QueryResultStep::handle);
    EXPECT_EQ(step("other", false), QueryResultStep::tryAgainLater);
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
