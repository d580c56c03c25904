#include "Applications/Doctor/FurtherDeviceRequest.h"

#include "Platform/Fake/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

using namespace farview;
using testing::ElementsAre;
using testing::HasSubstr;
using Wish = FurtherDeviceRequest::Wish;
using Device = FurtherDevice::State;

namespace
{

class FurtherDeviceRequestTest : public testing::Test
{
protected:
    using Post = FakeDistributedNotificationCenter::Post;

    void begin(Wish wish, const std::string& name = "Slab")
    {
        request = std::make_shared<FurtherDeviceRequest>(fake.platform(),
                                                         [](const auto& text) { return text; });
        request->start(wish, name, [this](const Outcome& told) {
            EXPECT_FALSE(outcome) << "told twice";
            outcome = told;
        });
    }
    void hear(const char* name, DistributedNotificationCenter::TextUserInfo userInfo)
    {
        center.postFromAnotherProcess(name, std::move(userInfo));
        fake.runLoop.runUntilIdle();
    }
    void hearDevices(const std::vector<FurtherDevice>& devices)
    {
        hear(kServerFurtherDevicesDidChange, {{kFurtherDevicesKey, textOfFurtherDevices(devices)}});
    }
    void hearSlab(Device state) { hearDevices({{"slab.local", "Slab", state}}); }
    void announceSlab()
    {
        fake.discovery.announce({FakeDevice{"Slab", "slab.local"}});
        fake.runLoop.runUntilIdle();
    }
    void expect(bool isDone, const std::string& words) const
    {
        ASSERT_TRUE(outcome);
        EXPECT_EQ(outcome->isDone, isDone);
        EXPECT_THAT(outcome->text, HasSubstr(words));
    }

    FakePlatform fake;
    FakeDistributedNotificationCenter& center = fake.distributedNotificationCenter;
    std::shared_ptr<FurtherDeviceRequest> request;
    std::optional<Outcome> outcome;
    const Post use{kAlsoConnectToHost, "", {{kConnectToHostNameKey, "slab.local"}}, 3};
    const Post leave{kDisconnectFurtherDevice, "", {{kConnectToHostNameKey, "slab.local"}}, 3};
};

TEST_F(FurtherDeviceRequestTest, FindsTheDeviceByItsNameAndTellsThatItIsUsed)
{
    begin(Wish::use);
    hearDevices({});
    announceSlab();
    EXPECT_THAT(center.postsNamed(kAlsoConnectToHost), ElementsAre(use));
    hearSlab(Device::connecting);
    EXPECT_FALSE(outcome);
    hearSlab(Device::connected);
    expect(true, "“Slab” is used, too.");
    EXPECT_EQ(center.countOf(kAlsoConnectToHost), 1);
    fake.runLoop.advance(Duration(60));
}

TEST_F(FurtherDeviceRequestTest, FindsItByItsHostToo)
{
    begin(Wish::use, "slab.local");
    hearDevices({});
    announceSlab();
    EXPECT_THAT(center.postsNamed(kAlsoConnectToHost), ElementsAre(use));
}

TEST_F(FurtherDeviceRequestTest, TellsThatNoSuchDeviceIsInSight)
{
    begin(Wish::use, "Tablet\x1b[2J");
    hearDevices({});
    announceSlab();
    fake.runLoop.advance(FurtherDeviceRequest::limit);
    expect(false, "No device called “Tablet\\x1B[2J” is in sight.");
    EXPECT_EQ(center.countOf(kAlsoConnectToHost), 0);
}

TEST_F(FurtherDeviceRequestTest, TellsThatItCouldNotBeReached)
{
    begin(Wish::use);
    hearSlab(Device::failed);
    EXPECT_THAT(center.postsNamed(kAlsoConnectToHost), ElementsAre(use)) << "it is tried again";
    hearSlab(Device::connecting);
    hearSlab(Device::failed);
    expect(false, "“Slab” could not be reached.");
}

TEST_F(FurtherDeviceRequestTest, IsNotWaitedForWithoutEnd)
{
    begin(Wish::use);
    hearSlab(Device::connecting);
    fake.runLoop.advance(FurtherDeviceRequest::connecting);
    expect(false, "“Slab” could not be reached.");
}

TEST_F(FurtherDeviceRequestTest, ShowsTheDigitsOfADeviceThatIsToBeConfirmedFirst)
{
    begin(Wish::use);
    hearSlab(Device::connecting);
    hear(kServerPairingDidChange,
         {{kPairingReportKey,
           textOfPairingReport({PairingReport::State::comparing, "482913", "Slab"})}});
    expect(false, "Does Slab show 482\u00A0913?");
}

TEST_F(FurtherDeviceRequestTest, ADeviceThatIsUsedAlreadyIsNotAskedFor)
{
    begin(Wish::use);
    hear(kQueryResultForConnectedHost, {{kDeviceNameKey, "slab.local"}});
    hearDevices({});
    announceSlab();
    expect(true, "“Slab” is used already.");
    outcome.reset();
    begin(Wish::use);
    hearSlab(Device::connected);
    expect(true, "“Slab” is used, too.");
    EXPECT_EQ(center.countOf(kAlsoConnectToHost), 0);
}

TEST_F(FurtherDeviceRequestTest, LeavesADeviceAndNoOther)
{
    begin(Wish::leave);
    const FurtherDevice desk{"desk.local", "Desk", Device::connected};
    hearDevices({desk, {"slab.local", "Slab", Device::connected}});
    EXPECT_THAT(center.postsNamed(kDisconnectFurtherDevice), ElementsAre(leave));
    EXPECT_FALSE(outcome);
    hearDevices({desk});
    expect(true, "“Slab” is no longer used.");
}

TEST_F(FurtherDeviceRequestTest, LeavesNobodyWhoIsNotUsed)
{
    begin(Wish::leave);
    hearDevices({{"desk.local", "Desk", Device::connected}});
    expect(false, "“Slab” is not used beside another device.");
    EXPECT_EQ(center.countOf(kDisconnectFurtherDevice), 0);
}

TEST_F(FurtherDeviceRequestTest, WithoutAServerItEndsInTime)
{
    begin(Wish::leave);
    fake.runLoop.advance(FurtherDeviceRequest::limit);
    expect(false, "The screen server does not answer.");
}

} // namespace
