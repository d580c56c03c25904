// Several devices at once, as the server holds them, on a scripted network and links.

#include "Applications/ScreenCapture/FurtherConnections.h"

#include "Applications/ScreenCapture/ScreenServer.h"
#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Platform/Fake/FakePlatform.h"
#include "Tests/Applications/FakeDeviceLink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Further = FurtherDevice::State;

namespace
{

const LinkDeviceScreen screenOfDevice{1280, 800, 100, 60};

/// "Desk" and "Sofa" are in sight, known, and "Desk" is connected.
class SeveralDevices : public testing::Test
{
protected:
    SeveralDevices() : preferences(fake.preferences, fake.distributedNotificationCenter)
    {
        preferences.setCurrentState(1);
        for (const char* name : {"Desk", "Sofa", "Wall"})
            paired.add({desk.key, name, {}, {}});
        makeServer();
        announce({"Desk", "Sofa"});
    }

    void makeServer()
    {
        server = std::make_shared<ScreenServer>(
            ScreenServer::Services{fake.discovery, fake.runLoop, fake.notificationCenter, center,
                                   preferences, links.maker(), fake.virtualScreens, fake.log,
                                   fake.clock, fake.preferences, chosenDevice},
            ScreenServer::Ending{[] {}, [this] { ++finished; }});
        server->listen();
        server->start();
    }
    void announce(const std::vector<std::string>& names)
    {
        std::vector<FakeDevice> devices;
        for (const auto& name : names) {
            FakeDevice device{name, name + ".local"};
            device.endpoints = {{"192.0.2.1", 6001, 1}};
            devices.push_back(device);
        }
        fake.discovery.announce(devices);
        advance(0.5);
    }
    void advance(double seconds) { fake.runLoop.advance(Duration(seconds)); }
    void request(const char* name, const std::string& hostName = {})
    {
        center.postFromAnotherProcess(name, {{kConnectToHostNameKey, hostName}});
        advance(0.5);
    }
    void accept(FakeDeviceLink& link)
    {
        link.accept("192.0.2.1");
        advance(0.5);
    }
    void connectDesk()
    {
        request(kConnectServerToHost, "Desk.local");
        accept(desk);
        center.forgetPosts();
    }
    FakeDeviceLink& sofa() { return links.further(0); }
    void alsoConnectSofa()
    {
        connectDesk();
        request(kAlsoConnectToHost, "Sofa.local");
        accept(sofa());
    }
    void wantAll(const std::vector<std::string>& names)
    {
        PropertyList::Array chosen(names.begin(), names.end());
        preferences.setAutoConnectDevices(chosen);
        preferences.setAutoConnectAllDevices(true);
        preferences.setAutoConnectOption(true);
        advance(2);
    }
    /// As the server told last.
    std::vector<FurtherDevice> told() const
    {
        const auto posts = center.postsNamed(kServerFurtherDevicesDidChange);
        return posts.empty() ? std::vector<FurtherDevice>{}
                             : furtherDevices(&posts.back().userInfo.at(kFurtherDevicesKey));
    }
    std::vector<std::pair<std::string, Further>> toldStates() const
    {
        std::vector<std::pair<std::string, Further>> states;
        for (const auto& device : told())
            states.emplace_back(device.name, device.state);
        return states;
    }

    FakePlatform fake;
    FakeDistributedNotificationCenter& center = fake.distributedNotificationCenter;
    FVEPreferences preferences;
    PairedPeers paired{fake.preferences, PairedPeers::devices};
    FakeDeviceLinks links;
    FakeDeviceLink& desk = links.first;
    KeptText chosenDevice;
    std::shared_ptr<ScreenServer> server;
    int finished = 0;
};

TEST_F(SeveralDevices, AreConnectedBesideEachOther)
{
    connectDesk();
    request(kAlsoConnectToHost, "Sofa.local");
    EXPECT_THAT(toldStates(), ElementsAre(std::pair("Sofa", Further::connecting)));
    accept(sofa());
    EXPECT_THAT(toldStates(), ElementsAre(std::pair("Sofa", Further::connected)));
    EXPECT_EQ(center.countOf(kServerDisconnectedFromDevice), 0) << "the first one stays";
    EXPECT_EQ(center.countOf(kServerConnectedToDevice), 0) << "that tells of the first one only";
}

TEST_F(SeveralDevices, HaveAMonitorEach)
{
    alsoConnectSofa();
    desk.deviceSends(screenOfDevice);
    sofa().deviceSends(LinkDeviceScreen{800, 600, 100, 60});
    advance(0.1);
    EXPECT_THAT(fake.virtualScreens.monitors(), SizeIs(2));
    EXPECT_EQ(told().front().screen.width, 800);
    request(kDisconnectFurtherDevice, "Sofa.local");
    EXPECT_THAT(fake.virtualScreens.monitors(), SizeIs(1));
    EXPECT_EQ(fake.virtualScreens.monitors().front()->wish().width, 1280);
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_THAT(sofa().goodbyes, ElementsAre(LinkGoodbyeCode::byUser));
}

TEST_F(SeveralDevices, EndAloneWhicheverEnds)
{
    alsoConnectSofa();
    desk.end(LinkEndReason::lost);
    advance(0.1);
    EXPECT_EQ(center.countOf(kServerDisconnectedFromDevice), 1);
    EXPECT_THAT(toldStates(), ElementsAre(std::pair("Sofa", Further::connected)));
}

TEST_F(SeveralDevices, AreToldAgainToWhoeverAsks)
{
    alsoConnectSofa();
    center.forgetPosts();
    request(kQueryRequestForConnectedHost);
    EXPECT_THAT(toldStates(), ElementsAre(std::pair("Sofa", Further::connected)));
}

TEST_F(SeveralDevices, AreUsedOnceEach)
{
    alsoConnectSofa();
    request(kAlsoConnectToHost, "Sofa.local");
    request(kAlsoConnectToHost, "Desk.local");
    EXPECT_EQ(links.furtherCount(), 1U);
    EXPECT_THAT(sofa().attempts, SizeIs(1));
}

TEST_F(SeveralDevices, AreNotAskedForByNonsense)
{
    connectDesk();
    for (const std::string& name : {std::string(), std::string("a\tb"), std::string(300, 'x')})
        request(kAlsoConnectToHost, name);
    center.postFromAnotherProcess(kAlsoConnectToHost, {});
    center.postFromAnotherProcess(kDisconnectFurtherDevice, {});
    advance(1);
    EXPECT_EQ(links.furtherCount(), 0U);
}

TEST_F(SeveralDevices, AreAtMostEight)
{
    connectDesk();
    for (int i = 0; i < 20; ++i)
        request(kAlsoConnectToHost, "host" + std::to_string(i) + ".local");
    EXPECT_EQ(links.furtherCount(), mostFurtherDevices);
}

TEST_F(SeveralDevices, SayThatOneIsNotFound)
{
    connectDesk();
    request(kAlsoConnectToHost, "Wall.local");
    advance(FurtherConnections::searchLimit.count());
    EXPECT_THAT(toldStates(), ElementsAre(std::pair("Wall.local", Further::failed)));
    announce({"Wall"});
    EXPECT_THAT(links.further(0).attempts, IsEmpty()) << "nobody tries again unasked";
    request(kAlsoConnectToHost, "Wall.local");
    EXPECT_THAT(toldStates(), ElementsAre(std::pair("Wall", Further::connecting)));
}

TEST_F(SeveralDevices, SayThatOneDoesNotAnswerAndTryWhenAsked)
{
    connectDesk();
    request(kAlsoConnectToHost, "Sofa.local");
    sofa().fail("no route");
    advance(100);
    EXPECT_THAT(toldStates(), ElementsAre(std::pair("Sofa", Further::failed)));
    EXPECT_THAT(sofa().attempts, SizeIs(1));
    EXPECT_EQ(center.countOf(kRequestingErrorMsgFromPrefPane), 0) << "it is told in the list";
    request(kAlsoConnectToHost, "Sofa.local");
    EXPECT_THAT(sofa().attempts, SizeIs(2));
}

TEST_F(SeveralDevices, BringOneBackThatWasLost)
{
    alsoConnectSofa();
    sofa().end(LinkEndReason::lost);
    EXPECT_THAT(toldStates(), ElementsAre(std::pair("Sofa", Further::connecting)));
    advance(FurtherConnections::firstPause.count());
    EXPECT_THAT(sofa().attempts, SizeIs(2));
    sofa().fail("still asleep");
    advance(FurtherConnections::firstPause.count());
    EXPECT_THAT(sofa().attempts, SizeIs(2)) << "the pause grows";
    advance(FurtherConnections::firstPause.count());
    EXPECT_THAT(sofa().attempts, SizeIs(3));
    accept(sofa());
    EXPECT_THAT(toldStates(), ElementsAre(std::pair("Sofa", Further::connected)));
}

TEST_F(SeveralDevices, LeaveOneThatIsWaitedFor)
{
    alsoConnectSofa();
    sofa().end(LinkEndReason::lost);
    request(kDisconnectFurtherDevice, "Sofa.local");
    EXPECT_THAT(told(), IsEmpty());
    advance(1000);
    EXPECT_THAT(sofa().attempts, SizeIs(1));
}

TEST_F(SeveralDevices, MakeTheFirstOfAFurtherOneWithItsPicture)
{
    alsoConnectSofa();
    sofa().deviceSends(screenOfDevice);
    advance(0.5);
    const auto monitor = fake.virtualScreens.monitors().front();
    center.forgetPosts();
    request(kConnectServerToHost, "Sofa.local");
    EXPECT_THAT(desk.goodbyes, ElementsAre(LinkGoodbyeCode::byUser));
    EXPECT_THAT(sofa().goodbyes, IsEmpty());
    EXPECT_THAT(fake.virtualScreens.monitors(), ElementsAre(monitor)) << "it never went away";
    ASSERT_EQ(center.countOf(kServerConnectedToDevice), 1);
    EXPECT_EQ(center.postsNamed(kServerConnectedToDevice).front().userInfo.at(kDeviceNameKey),
              "Sofa.local");
    EXPECT_THAT(told(), IsEmpty());
    sofa().end(LinkEndReason::lost);
    EXPECT_EQ(center.countOf(kServerDisconnectedFromDevice), 2);
}

TEST_F(SeveralDevices, AskAboutAStrangerAmongThem)
{
    paired.forget("Sofa");
    connectDesk();
    request(kAlsoConnectToHost, "Sofa.local");
    EXPECT_EQ(std::get<bool>(sofa().prove()), false);
    ASSERT_FALSE(sofa().mayNotAskUser());
    sofa().showDigits("482913");
    center.postFromAnotherProcess(kConfirmDevice, {{kDigitsKey, "482913"}});
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(sofa().confirmations, 1);
    EXPECT_EQ(desk.confirmations, 0);
    sofa().wasPaired = true;
    accept(sofa());
    EXPECT_THAT(toldStates(), ElementsAre(std::pair("Sofa", Further::connected)));
    EXPECT_THAT(paired.all(), SizeIs(3));
}

TEST_F(SeveralDevices, LeaveOnlyTheOneThatTheUserDoesNotRecognise)
{
    paired.forget("Sofa");
    connectDesk();
    request(kAlsoConnectToHost, "Sofa.local");
    sofa().showDigits("482913");
    center.postFromAnotherProcess(kRefuseDevice, {{kDigitsKey, "482913"}});
    advance(0.5);
    EXPECT_THAT(sofa().goodbyes, ElementsAre(LinkGoodbyeCode::notConfirmed));
    EXPECT_THAT(desk.goodbyes, IsEmpty());
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(SeveralDevices, AskOneQuestionAtATime)
{
    paired.forget("Sofa");
    paired.forget("Wall");
    announce({"Wall"});
    connectDesk();
    request(kAlsoConnectToHost, "Sofa.local");
    sofa().showDigits("482913");
    request(kAlsoConnectToHost, "Wall.local");
    EXPECT_TRUE(links.further(1).mayNotAskUser());
    const auto report = center.postsNamed(kServerPairingDidChange).back().userInfo;
    EXPECT_EQ(pairingReport(&report.at(kPairingReportKey)).device, "Sofa");
}

TEST_F(SeveralDevices, LeaveOneThatIsForgotten)
{
    alsoConnectSofa();
    paired.forget("Sofa");
    request(kPairedDevicesDidChange);
    EXPECT_THAT(sofa().goodbyes, ElementsAre(LinkGoodbyeCode::byUser));
    EXPECT_THAT(desk.goodbyes, IsEmpty());
}

TEST_F(SeveralDevices, AreToldTheirOwnRightToType)
{
    links.first.key = std::string(64, 'e');
    paired.add({links.first.key, "Desk", {}, {}});
    alsoConnectSofa();
    paired.letType("Sofa", true);
    request(kPairedDevicesDidChange);
    ASSERT_THAT(sofa().sentOptions, SizeIs(1));
    EXPECT_TRUE(sofa().sentOptions.back().typing);
    EXPECT_THAT(desk.sentOptions, IsEmpty());
    preferences.setEnableTouchDisplay(false);
    advance(0.1);
    EXPECT_FALSE(sofa().sentOptions.back().typing) << "the option switches all of it";
}

TEST_F(SeveralDevices, AllSayGoodbyeWhenTheServerQuits)
{
    alsoConnectSofa();
    server->quit();
    advance(0.1);
    desk.goodbyeIsSaid();
    EXPECT_EQ(finished, 0);
    sofa().goodbyeIsSaid();
    advance(0.3);
    EXPECT_EQ(finished, 1);
    EXPECT_THAT(sofa().goodbyes, ElementsAre(LinkGoodbyeCode::quitting));
}

TEST_F(SeveralDevices, AreConnectedByThemselvesWhenTheUserWantsAll)
{
    announce({"Wall"});
    wantAll({"Desk", "Sofa"});
    ASSERT_THAT(desk.attempts, SizeIs(1));
    EXPECT_EQ(links.furtherCount(), 0U) << "the first comes first";
    accept(desk);
    ASSERT_EQ(links.furtherCount(), 1U);
    accept(sofa());
    advance(100);
    EXPECT_EQ(links.furtherCount(), 1U) << "Wall is not ticked";
    EXPECT_THAT(toldStates(), ElementsAre(std::pair("Sofa", Further::connected)));
}

TEST_F(SeveralDevices, AreNotConnectedByThemselvesUnlessTheUserWantsAll)
{
    wantAll({"Desk", "Sofa"});
    preferences.setAutoConnectAllDevices(false);
    accept(desk);
    advance(100);
    EXPECT_EQ(links.furtherCount(), 0U);
    preferences.setAutoConnectAllDevices(true);
    advance(1);
    EXPECT_EQ(links.furtherCount(), 1U);
}

TEST_F(SeveralDevices, AreTriedAgainByThemselvesInTheirTimeAndSilently)
{
    wantAll({"Desk", "Sofa"});
    accept(desk);
    center.forgetPosts();
    sofa().fail("asleep");
    advance(1);
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_EQ(links.furtherCount(), 1U);
    advance(2);
    EXPECT_EQ(links.furtherCount(), 2U) << "after a pause";
    EXPECT_EQ(center.countOf(kRequestingErrorMsgFromPrefPane), 0);
}

TEST_F(SeveralDevices, LeaveOneAloneThatTheUserDoesNotWant)
{
    wantAll({"Desk", "Sofa"});
    accept(desk);
    accept(sofa());
    request(kDisconnectFurtherDevice, "Sofa.local");
    advance(300);
    EXPECT_EQ(links.furtherCount(), 1U);
}

TEST_F(SeveralDevices, GoOnWhenTheFirstIsLostAndFindsAnother)
{
    announce({"Wall"});
    wantAll({"Desk", "Sofa"});
    accept(desk);
    accept(sofa());
    fake.discovery.remove({"Desk"});
    advance(0.1);
    desk.end(LinkEndReason::lost);
    advance(10);
    EXPECT_THAT(desk.attempts, SizeIs(1)) << "Sofa is used already";
    announce({"Desk"});
    advance(10);
    EXPECT_THAT(desk.attempts, SizeIs(2));
}

} // namespace
