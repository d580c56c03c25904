#include "Common/ConnectionFollower.h"

#include "Common/FVEDistributedNotifications.h"
#include "Common/FVEPreferences.h"
#include "Common/PairedPeers.h"
#include "Platform/Fake/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using Post = FakeDistributedNotificationCenter::Post;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class ConnectionFollowerTest : public testing::Test
{
protected:
    bool end(UserInfo userInfo = {})
    {
        center.forgetPosts();
        return follower.followEnd({kServerDisconnectedFromDevice, nullptr, std::move(userInfo)});
    }
    bool serverBegins() { return end({{kAwaitsRequestKey, std::string("YES")}}); }

    void hear(const PairingReport& report)
    {
        follower.followPairing(
            {kServerPairingDidChange, nullptr, {{kPairingReportKey, textOfPairingReport(report)}}});
    }
    void compare() { hear(comparing); }

    const PairingReport comparing{PairingReport::State::comparing, "482913", "Pad"};
    FakePlatform fake;
    FakeDistributedNotificationCenter& center = fake.distributedNotificationCenter;
    ConnectionFollower follower{fake.platform()};
    const Post host{kConnectServerToHost, "", {{kConnectToHostNameKey, "pad.local"}}, 3};
    const Post address{kConnectServerToTicket, "", {{kConnectUsingTicketKey, "10.0.0.5"}}, 3};
    const Post none{kDisconnectCurrentServerFromHost, "", {}, 3};
};

TEST_F(ConnectionFollowerTest, PostsWhatTheUserWants)
{
    follower.connectToHost("pad.local");
    follower.connectToAddress("10.0.0.5");
    follower.chooseNone();
    follower.quitServer();
    follower.query();
    EXPECT_THAT(center.posts(),
                ElementsAre(host, address, none, Post{kTerminateScreenServer, "", {}, 3},
                            Post{kQueryRequestForConnectedHost, "", {}, 2}));
}

TEST_F(ConnectionFollowerTest, AsksAServerThatBeginsOnceMoreForTheLatestRequest)
{
    follower.connectToHost("pad.local");
    EXPECT_TRUE(serverBegins());
    EXPECT_THAT(center.posts(), ElementsAre(host));
    EXPECT_FALSE(serverBegins());
    EXPECT_THAT(center.posts(), IsEmpty());
    follower.connectToHost("pad.local");
    follower.connectToAddress("10.0.0.5");
    EXPECT_FALSE(serverBegins()) << "no device of a host";
    EXPECT_THAT(center.posts(), ElementsAre(address));
    follower.connectToAddress("10.0.0.5");
    follower.chooseNone();
    EXPECT_FALSE(serverBegins());
    EXPECT_THAT(center.posts(), ElementsAre(none));
}

TEST_F(ConnectionFollowerTest, TheEndOfAConnectionAnswersTheRequestForNoDeviceAndNoOther)
{
    follower.chooseNone();
    end();
    EXPECT_FALSE(serverBegins());
    EXPECT_THAT(center.posts(), IsEmpty());
    follower.connectToHost("pad.local");
    end();
    EXPECT_THAT(center.posts(), IsEmpty());
    EXPECT_TRUE(serverBegins());
}

TEST_F(ConnectionFollowerTest, AskedForSomethingElseByAnotherProgramItKeepsNothing)
{
    const auto hear = [this](const Post& post) {
        follower.connectToHost("pad.local");
        follower.heardRequest({post.name, nullptr, {post.userInfo.begin(), post.userInfo.end()}});
        return serverBegins();
    };
    EXPECT_TRUE(hear(host)) << "its own";
    EXPECT_FALSE(hear(Post{kConnectServerToHost, "", {{kConnectToHostNameKey, "slab.local"}}, 3}));
    EXPECT_FALSE(hear(address));
    EXPECT_FALSE(hear(none));
}

TEST_F(ConnectionFollowerTest, KnowsTheReportAboutTheMonitorUntilTheConnectionEnds)
{
    EXPECT_FALSE(follower.screen());
    const ScreenReport locked{.state = ScreenReport::State::missing,
                              .obstacle = ScreenObstacle::locked};
    follower.followScreen(
        {kServerScreenDidChange, nullptr, {{kScreenReportKey, textOfScreenReport(locked)}}});
    EXPECT_EQ(follower.screen(), locked);
    follower.followScreen({kServerScreenDidChange, nullptr, {}});
    EXPECT_EQ(follower.screen(), ScreenReport{}) << "what cannot be read tells of no picture";
    end();
    EXPECT_FALSE(follower.screen());
}

TEST_F(ConnectionFollowerTest, KnowsWhatIsInQuestionUntilTheNextRequestOrTheNextServer)
{
    EXPECT_EQ(follower.pairing(), PairingReport{});
    compare();
    EXPECT_EQ(follower.pairing(), comparing);
    end();
    EXPECT_EQ(follower.pairing(), comparing) << "that was the end of an earlier connection";
    serverBegins();
    EXPECT_EQ(follower.pairing(), PairingReport{});
    compare();
    follower.chooseNone();
    EXPECT_EQ(follower.pairing(), PairingReport{});
    compare();
    follower.quitServer();
    EXPECT_EQ(follower.pairing(), PairingReport{});
    compare();
    follower.followPairing({kServerPairingDidChange, nullptr, {}});
    EXPECT_EQ(follower.pairing(), PairingReport{}) << "what cannot be read is nothing";
}

TEST_F(ConnectionFollowerTest, AnswersWithTheDigitsThatTheUserSaw)
{
    follower.confirmDevice();
    follower.refuseDevice();
    EXPECT_THAT(center.posts(), IsEmpty()) << "nothing was asked";
    compare();
    follower.confirmDevice();
    follower.refuseDevice();
    EXPECT_THAT(center.posts(), ElementsAre(Post{kConfirmDevice, "", {{kDigitsKey, "482913"}}, 3},
                                            Post{kRefuseDevice, "", {{kDigitsKey, "482913"}}, 3}));
    center.forgetPosts();
    hear({PairingReport::State::changed, "", "Pad"});
    follower.confirmDevice();
    EXPECT_THAT(center.posts(), IsEmpty());
}

TEST_F(ConnectionFollowerTest, ForgetsAConfirmedDeviceForTheServerToo)
{
    PairedPeers peers(fake.preferences, PairedPeers::devices);
    peers.add({std::string(64, 'a'), "Pad", {}, {}});
    follower.forgetDevice("Pad");
    EXPECT_THAT(peers.all(), IsEmpty());
    EXPECT_THAT(center.posts(), ElementsAre(Post{kPairedDevicesDidChange, "", {}, 3}));
}

TEST_F(ConnectionFollowerTest, AsksForFurtherDevicesAndLeavesThem)
{
    compare();
    follower.alsoConnectToHost("slab.local");
    EXPECT_EQ(follower.pairing(), PairingReport{});
    follower.leaveFurtherDevice("slab.local");
    const DistributedNotificationCenter::TextUserInfo slab{{kConnectToHostNameKey, "slab.local"}};
    EXPECT_THAT(center.posts(), ElementsAre(Post{kAlsoConnectToHost, "", slab, 3},
                                            Post{kDisconnectFurtherDevice, "", slab, 3}));
}

TEST_F(ConnectionFollowerTest, KnowsTheFurtherDevicesUntilTheNextServerBegins)
{
    const FurtherDevice slab{"slab.local", "Slab", FurtherDevice::State::connected};
    follower.followFurtherDevices({kServerFurtherDevicesDidChange,
                                   nullptr,
                                   {{kFurtherDevicesKey, textOfFurtherDevices({slab})}}});
    EXPECT_THAT(follower.furtherDevices(), ElementsAre(slab));
    ASSERT_NE(follower.furtherDevice("slab.local"), nullptr);
    EXPECT_EQ(follower.furtherDevice("Slab"), nullptr);
    end();
    EXPECT_THAT(follower.furtherDevices(), ElementsAre(slab)) << "only the first one went";
    serverBegins();
    EXPECT_THAT(follower.furtherDevices(), IsEmpty());
}

TEST_F(ConnectionFollowerTest, KnowsTheKeyOfTheDeviceUntilTheConnectionEnds)
{
    EXPECT_EQ(follower.deviceKey(), "");
    follower.followKey({kServerConnectedToDevice, nullptr, {{kDeviceKeyKey, std::string("a1")}}});
    EXPECT_EQ(follower.deviceKey(), "a1");
    follower.followKey({kServerConnectedToDevice, nullptr, {}});
    EXPECT_EQ(follower.deviceKey(), "") << "it is another one, without a key";
    follower.followKey({kServerConnectedToDevice, nullptr, {{kDeviceKeyKey, std::string("a1")}}});
    end();
    EXPECT_EQ(follower.deviceKey(), "");
}

TEST_F(ConnectionFollowerTest, LetsAConfirmedDeviceTypeAndTellsTheServer)
{
    PairedPeers peers(fake.preferences, PairedPeers::devices);
    const std::string key(64, 'a');
    follower.letType(key, true);
    EXPECT_FALSE(follower.mayType(key)) << "nobody has confirmed it";
    peers.add({key, "Pad", {}, {}});
    EXPECT_FALSE(follower.mayType(key));
    center.forgetPosts();
    follower.letType(key, true);
    EXPECT_TRUE(follower.mayType(key));
    EXPECT_TRUE(follower.mayType("Pad"));
    EXPECT_FALSE(follower.mayType(""));
    EXPECT_THAT(center.posts(), ElementsAre(Post{kPairedDevicesDidChange, "", {}, 3}));
    follower.letType("Pad", false);
    EXPECT_FALSE(follower.mayType(key));
}

TEST_F(ConnectionFollowerTest, KeepsNothingThatIsForgottenOrSwitchedOff)
{
    follower.connectToHost("pad.local");
    follower.forgetRequest();
    EXPECT_FALSE(serverBegins());
    follower.connectToHost("pad.local");
    follower.quitServer();
    EXPECT_FALSE(serverBegins());
}

} // namespace
