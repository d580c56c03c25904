// Auto-connection as the server does it, on a scripted network and link.

#include "Applications/ScreenCapture/AutoConnector.h"

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

namespace
{

/// Device "A" has the host "a.local" and the address 192.0.2.1, "B" 192.0.2.2, and so on.
std::string hostOf(const std::string& name)
{
    return std::string(1, static_cast<char>(name[0] + ('a' - 'A'))) + ".local";
}
std::string addressOf(const std::string& name)
{
    return "192.0.2." + std::to_string(name[0] - 'A' + 1);
}

class AutoConnectorTest : public testing::Test
{
protected:
    AutoConnectorTest() : preferences(fake.preferences, fake.distributedNotificationCenter)
    {
        preferences.setCurrentState(1);
        preferences.setAutoConnectOption(true);
        for (char name = 'A'; name <= 'Z'; ++name)
            paired.add({link.key, std::string(1, name), {}, {}});
        makeServer();
    }

    void makeServer()
    {
        server = std::make_shared<ScreenServer>(
            ScreenServer::Services{fake.discovery, fake.runLoop, fake.notificationCenter, center,
                                   preferences, links.maker(), fake.virtualScreens, fake.log,
                                   fake.clock, fake.preferences, chosenDevice},
            ScreenServer::Ending{});
    }
    void choose(PropertyList::Array names)
    {
        preferences.setAutoConnectDevices(names);
        fake.runLoop.runUntilIdle();
    }
    void setOption(bool on)
    {
        preferences.setAutoConnectOption(on);
        fake.runLoop.runUntilIdle();
    }
    std::vector<std::string> pairingReports() const
    {
        std::vector<std::string> reports;
        for (const auto& post : center.postsNamed(kServerPairingDidChange))
            reports.push_back(post.userInfo.at(kPairingReportKey));
        return reports;
    }
    void announce(const std::vector<std::string>& names)
    {
        std::vector<FakeDevice> devices;
        for (const auto& name : names) {
            FakeDevice device{name, hostOf(name)};
            device.endpoints = {{addressOf(name), 6001, 1}};
            devices.push_back(device);
        }
        fake.discovery.announce(devices);
        fake.runLoop.runUntilIdle();
    }
    void setState(const std::string& name, const char* state)
    {
        fake.discovery.setTXTRecord(name, {{kFVEConnectionStateKey, Data::fromText(state)}});
        advance(1);
    }
    void listenAndStart()
    {
        server->listen();
        server->start();
    }
    void start()
    {
        listenAndStart();
        fake.runLoop.advance(AutoConnector::settling);
        center.forgetPosts();
    }
    /// With these devices on the network and those chosen.
    void start(const std::vector<std::string>& there, PropertyList::Array names)
    {
        announce(there);
        choose(std::move(names));
        start();
    }
    void advance(double seconds) { fake.runLoop.advance(Duration(seconds)); }
    void accept()
    {
        link.accept(link.attempts.back().endpoints.front().address);
        fake.runLoop.runUntilIdle();
    }
    void fail()
    {
        link.fail("no");
        fake.runLoop.runUntilIdle();
    }
    void lose(LinkEndReason reason = LinkEndReason::lost)
    {
        link.end(reason);
        fake.runLoop.runUntilIdle();
    }
    void request(const char* name, DistributedNotificationCenter::TextUserInfo userInfo = {})
    {
        center.postFromAnotherProcess(name, std::move(userInfo));
        fake.runLoop.runUntilIdle();
    }
    void userChooses(const std::string& name)
    {
        request(kConnectServerToHost, {{kConnectToHostNameKey, hostOf(name)}});
    }
    void userChoosesNone() { request(kDisconnectCurrentServerFromHost); }
    void connect(const std::vector<std::string>& there, PropertyList::Array names)
    {
        start(there, std::move(names));
        accept();
        center.forgetPosts();
    }
    /// "A" is there, and the user chose it.
    void connectAsTheUserChose()
    {
        start({"A"}, {});
        userChooses("A");
        accept();
    }

    /// The devices that were tried so far, as a text of their names.
    std::string tried() const
    {
        std::string names;
        for (const auto& attempt : link.attempts)
            names += static_cast<char>('A' + attempt.endpoints.front().address.back() - '1');
        return names;
    }
    int errorCount() const { return center.countOf(kRequestingErrorMsgFromPrefPane); }

    FakePlatform fake;
    FakeDistributedNotificationCenter& center = fake.distributedNotificationCenter;
    FVEPreferences preferences;
    FakeDeviceLinks links;
    FakeDeviceLink& link = links.first;
    PairedPeers paired{fake.preferences, PairedPeers::devices};
    KeptText chosenDevice;
    std::shared_ptr<ScreenServer> server;
};

// --- when and to which -----------------------------------------------------------------------

TEST_F(AutoConnectorTest, ConnectsToTheFirstDeviceOfTheListThatIsThere)
{
    start({"A", "B", "C"}, {"D", "B", "A"});
    EXPECT_EQ(tried(), "B");
    accept();
    const auto posts = center.postsNamed(kServerConnectedToDevice);
    ASSERT_EQ(posts.size(), 1U);
    const DistributedNotificationCenter::TextUserInfo expected{{kDeviceNameKey, "b.local"},
                                                               {kDeviceAddressKey, "192.0.2.2"},
                                                               {kCipherKey, link.cipher},
                                                               {kDeviceKeyKey, link.key}};
    EXPECT_EQ(posts.front().userInfo, expected);
    advance(600);
    EXPECT_EQ(tried(), "B");
}

TEST_F(AutoConnectorTest, TakesTheFirstOfTheListThoughTheSecondIsSeenFirst)
{
    choose({"A", "B"});
    listenAndStart();
    announce({"B"});
    advance(0.3);
    announce({"A"});
    advance(1);
    EXPECT_EQ(tried(), "A");
}

TEST_F(AutoConnectorTest, LooksAtTheNetworkFirstHoweverLateDiscoveryBegins)
{
    fake.discovery.setCondition(DiscoveryCondition::starting);
    choose({"A", "B"});
    start();
    advance(1);
    announce({"B"});
    fake.discovery.setCondition(DiscoveryCondition::working);
    advance(AutoConnector::settling.count() / 2);
    EXPECT_EQ(tried(), "");
    announce({"A"});
    advance(AutoConnector::settling.count());
    EXPECT_EQ(tried(), "A");
}

TEST_F(AutoConnectorTest, DoesNothingWhileTheOptionIsOff)
{
    preferences.setAutoConnectOption(false);
    start({"A"}, {"A"});
    advance(600);
    EXPECT_EQ(tried(), "");
    setOption(true);
    EXPECT_EQ(tried(), "A");
}

TEST_F(AutoConnectorTest, DoesNothingWhileTheSystemIsNotOn)
{
    announce({"A"});
    choose({"A"});
    for (const long state : {0L, 2L}) {
        preferences.setCurrentState(state);
        if (state == 0)
            start();
        advance(600);
        EXPECT_EQ(tried(), "") << state;
    }
    preferences.setCurrentState(1);
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(tried(), "A");
}

TEST_F(AutoConnectorTest, ConnectsAsSoonAsADeviceIsTicked)
{
    start({"A"}, {});
    choose({"A"});
    EXPECT_EQ(tried(), "A");
}

TEST_F(AutoConnectorTest, ConnectsAsSoonAsABusyDeviceIsFree)
{
    announce({"A"});
    choose({"A"});
    fake.discovery.setTXTRecord("A", {{kFVEConnectionStateKey, Data::fromText("Connected")}});
    start();
    advance(600);
    ASSERT_EQ(tried(), "");
    setState("A", "NotConnected");
    EXPECT_EQ(tried(), "A");
}

TEST_F(AutoConnectorTest, WaitsForADeviceThatIsStillBeingResolved)
{
    choose({"A"});
    start();
    FakeDevice device{"A", "a.local"};
    device.resolve.delay = Duration(3);
    fake.discovery.announce(std::vector{device});
    advance(2);
    EXPECT_EQ(tried(), "");
    advance(2);
    EXPECT_EQ(link.attempts.size(), 1U);
}

// --- failures --------------------------------------------------------------------------------

TEST_F(AutoConnectorTest, TriesTheNextAtOnceWhenOneFails)
{
    start({"A", "B", "C"}, {"C", "A", "B"});
    fail();
    EXPECT_EQ(tried(), "CA");
    fail();
    EXPECT_EQ(tried(), "CAB");
    accept();
    EXPECT_EQ(center.countOf(kServerConnectedToDevice), 1);
}

TEST_F(AutoConnectorTest, NeverBothersTheUserWithItsFailures)
{
    start({"A", "B"}, {"A", "B"});
    for (int round = 0; round < 6; ++round) {
        fail();
        advance(61);
    }
    EXPECT_GE(tried().size(), 6U);
    EXPECT_EQ(errorCount(), 0);
    EXPECT_EQ(center.countOf(kServerDisconnectedFromDevice), 0) << "nothing had been connected";
    EXPECT_TRUE(fake.log.contains("Cannot connect to a.local: no"));
}

TEST_F(AutoConnectorTest, TriesAgainAfterPausesThatGrowToAMinute)
{
    start({"A"}, {"A"});
    for (const double pause : {2, 4, 8, 16, 32, 60, 60, 60}) {
        const auto before = tried().size();
        fail();
        advance(pause - 0.1);
        ASSERT_EQ(tried().size(), before) << pause;
        advance(0.2);
        ASSERT_EQ(tried().size(), before + 1) << pause;
    }
}

TEST_F(AutoConnectorTest, BeginsEachRoundWithTheFirstOfTheList)
{
    start({"A", "B"}, {"B", "A"});
    fail();
    fail();
    advance(2.1);
    fail();
    EXPECT_EQ(tried(), "BABA");
}

TEST_F(AutoConnectorTest, TriesADeviceThatAppearsAtOnceAndTheOthersInTheirTime)
{
    start({"A"}, {"A", "B"});
    for (const double pause : {2.1, 4.1, 8.1}) {
        fail();
        advance(pause);
    }
    fail();
    ASSERT_EQ(tried(), "AAAA");
    announce({"B"});
    EXPECT_EQ(tried(), "AAAAB");
    fail();
    advance(15);
    EXPECT_EQ(tried(), "AAAAB");
    advance(2);
    EXPECT_EQ(tried(), "AAAABA");
}

TEST_F(AutoConnectorTest, TriesADeviceAtOnceThatWentAndReturned)
{
    start({"A"}, {"A"});
    for (const double pause : {2.1, 4.1, 8.1}) {
        fail();
        advance(pause);
    }
    fail();
    fake.discovery.remove({"A"});
    advance(1);
    announce({"A"});
    EXPECT_EQ(tried(), "AAAAA");
}

TEST_F(AutoConnectorTest, WakesNobodyWhileThereIsNothingToTry)
{
    start({"B"}, {"A"});
    advance(10);
    EXPECT_EQ(tried(), "") << "it was not chosen";
    EXPECT_EQ(fake.runLoop.pendingCount(), 0U);
}

TEST_F(AutoConnectorTest, AsksAgainWhereADeviceIsThatFailed)
{
    start({"A"}, {"A"});
    const int before = fake.discovery.service("A")->resolveCount();
    fail();
    EXPECT_EQ(fake.discovery.service("A")->resolveCount(), before + 1);
    EXPECT_EQ(fake.discovery.checkAgainCount(), 1);
}

// --- coming back -----------------------------------------------------------------------------

TEST_F(AutoConnectorTest, GoesToTheNextWhenTheDeviceDies)
{
    connect({"A", "B"}, {"A", "B"});
    lose(LinkEndReason::silent);
    EXPECT_EQ(tried(), "AB");
    EXPECT_EQ(center.countOf(kServerDisconnectedFromDevice), 1);
    EXPECT_EQ(errorCount(), 0);
}

TEST_F(AutoConnectorTest, ComesBackToADeviceThatSlept)
{
    connect({"A"}, {"A"});
    advance(60);
    fake.discovery.kill("A");
    lose(LinkEndReason::silent);
    advance(300);
    ASSERT_EQ(tried(), "A") << "it is not on the network";
    announce({"A"});
    EXPECT_EQ(tried(), "AA");
    accept();
    EXPECT_EQ(center.countOf(kServerConnectedToDevice), 1);
}

TEST_F(AutoConnectorTest, ComesBackToADeviceThatNeverLeftTheNetwork)
{
    connect({"A"}, {"A"});
    advance(60);
    lose(LinkEndReason::lost);
    EXPECT_EQ(tried(), "A");
    advance(2.1);
    EXPECT_EQ(tried(), "AA");
}

TEST_F(AutoConnectorTest, ComesBackAfterTheNetworkWasAway)
{
    connect({"A"}, {"A"});
    advance(60);
    fake.discovery.setCondition(DiscoveryCondition::unavailable);
    lose();
    for (int round = 0; round < 5; ++round) {
        advance(61);
        fail();
    }
    const auto before = tried().size();
    fake.discovery.setCondition(DiscoveryCondition::working);
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(tried().size(), before + 1) << "at once, whatever failed before";
}

TEST_F(AutoConnectorTest, ComesBackAfterTheComputerWasSuspended)
{
    connect({"A"}, {"A"});
    advance(60);
    fake.runLoop.suspend(Duration(3600));
    lose(LinkEndReason::silent);
    for (const double pause : {2.1, 4.1, 8.1}) {
        advance(pause); // the network needs a moment
        fail();
    }
    advance(16.1);
    accept();
    EXPECT_EQ(center.countOf(kServerConnectedToDevice), 1);
    EXPECT_EQ(errorCount(), 0);
}

TEST_F(AutoConnectorTest, DoesNotStormADeviceThatAcceptsAndLeavesAtOnce)
{
    start({"A"}, {"A"});
    for (const double pause : {2, 4, 8, 16, 32, 60}) {
        const auto before = tried().size();
        accept();
        lose();
        advance(pause - 0.1);
        ASSERT_EQ(tried().size(), before) << pause;
        advance(0.2);
        ASSERT_EQ(tried().size(), before + 1) << pause;
    }
    accept();
    advance(AutoConnector::steadyAfter.count());
    const auto before = tried().size();
    lose();
    advance(2.1);
    EXPECT_EQ(tried().size(), before + 1) << "it held well: the first pause again";
}

// --- what the user wants goes first ----------------------------------------------------------

TEST_F(AutoConnectorTest, LeavesADeviceAloneThatTheUserDisconnected)
{
    connect({"A"}, {"A"});
    userChoosesNone();
    EXPECT_THAT(link.goodbyes, ElementsAre(LinkGoodbyeCode::byUser));
    advance(600);
    EXPECT_EQ(tried(), "A");
    setState("A", "Connected");
    setState("A", "NotConnected");
    EXPECT_EQ(tried(), "A") << "news of it change nothing";
}

TEST_F(AutoConnectorTest, TakesNoOtherDeviceInsteadOfNone)
{
    connect({"A", "B"}, {"A", "B"});
    userChoosesNone();
    advance(600);
    EXPECT_EQ(tried(), "A");
    announce({"C"});
    choose({"A", "B", "C"});
    EXPECT_EQ(tried(), "AC") << "one that appears is new";
}

TEST_F(AutoConnectorTest, ReturnsToADeviceThatWentAndCameBack)
{
    connect({"A"}, {"A"});
    userChoosesNone();
    fake.discovery.remove({"A"});
    advance(1);
    announce({"A"});
    EXPECT_EQ(tried(), "AA");
}

TEST_F(AutoConnectorTest, ReturnsToADeviceThatTheUserChoseAgain)
{
    connect({"A"}, {"A"});
    userChoosesNone();
    userChooses("A");
    accept();
    EXPECT_EQ(tried(), "AA");
    lose();
    advance(3);
    EXPECT_EQ(tried(), "AAA");
}

TEST_F(AutoConnectorTest, ReturnsToADeviceThatTheUserTickedAgain)
{
    connect({"A"}, {"A"});
    userChoosesNone();
    choose({});
    choose({"A"});
    EXPECT_EQ(tried(), "AA");
}

TEST_F(AutoConnectorTest, ReturnsWhenTheUserTurnsItOffAndOn)
{
    connect({"A"}, {"A"});
    userChoosesNone();
    setOption(false);
    setOption(true);
    EXPECT_EQ(tried(), "AA");
}

TEST_F(AutoConnectorTest, GivesWayToAUsersRequest)
{
    start({"A", "B"}, {"A"});
    ASSERT_EQ(tried(), "A");
    userChooses("B");
    EXPECT_THAT(link.goodbyes, ElementsAre(LinkGoodbyeCode::byUser));
    EXPECT_EQ(tried(), "AB");
    accept();
    advance(600);
    EXPECT_EQ(tried(), "AB");
    EXPECT_EQ(center.postsNamed(kServerConnectedToDevice).front().userInfo.at(kDeviceNameKey),
              "b.local");
}

TEST_F(AutoConnectorTest, WaitsWhileAUsersRequestIsUnderWay)
{
    choose({"A"});
    start();
    userChooses("B");
    announce({"A"});
    advance(3);
    EXPECT_EQ(tried(), "") << "the user's device is still searched for";
    advance(4);
    EXPECT_EQ(errorCount(), 1) << "a user's request that failed is told";
    EXPECT_EQ(tried(), "A");
    fail();
    EXPECT_EQ(errorCount(), 1);
}

TEST_F(AutoConnectorTest, BecomesTheUsersRequestWhenTheUserAsksForTheSame)
{
    start({"A"}, {"A"});
    userChooses("A");
    EXPECT_EQ(tried(), "A") << "what is under way goes on";
    EXPECT_THAT(link.goodbyes, IsEmpty());
    fail();
    EXPECT_EQ(errorCount(), 1);
}

TEST_F(AutoConnectorTest, StaysWithAnAddressThatTheUserTyped)
{
    announce({"A"});
    choose({"A"});
    listenAndStart();
    request(kConnectServerToTicket, {{kConnectUsingTicketKey, "192.0.2.9"}});
    accept();
    advance(600);
    EXPECT_EQ(link.attempts.size(), 1U);
    userChoosesNone();
    advance(600);
    EXPECT_EQ(link.attempts.size(), 1U);
}

TEST_F(AutoConnectorTest, EndsAnAttemptWhenTheUserChoosesNone)
{
    start({"A", "B"}, {"A", "B"});
    userChoosesNone();
    EXPECT_THAT(link.goodbyes, ElementsAre(LinkGoodbyeCode::byUser));
    advance(600);
    EXPECT_EQ(tried(), "A");
}

TEST_F(AutoConnectorTest, DoesNothingMoreOnceTheServerQuits)
{
    start({"A"}, {"A"});
    fail();
    server->quit();
    advance(600);
    EXPECT_EQ(tried(), "A");
}

TEST_F(AutoConnectorTest, LeavesNothingBehindWhenItsServerIsDestroyed)
{
    start({"A"}, {"A"});
    fail();
    server.reset();
    setState("A", "NotConnected");
    preferences.setAutoConnectOption(false);
    advance(600);
    EXPECT_EQ(tried(), "A");
}

// --- confirmed devices -----------------------------------------------------------------------

TEST_F(AutoConnectorTest, TellsTheOptionsTogetherWithTheConnection)
{
    connect({"A"}, {"A"});
    EXPECT_EQ(link.attempts.front().options.touch, preferences.enableTouchDisplay());
    EXPECT_THAT(link.sentOptions, IsEmpty());
}

TEST_F(AutoConnectorTest, LeavesADeviceAloneThatTheUserNeverConfirmedAndSaysSo)
{
    paired.forget("A");
    start({"A"}, {"A"});
    advance(600);
    EXPECT_EQ(tried(), "");
    request(kQueryRequestForConnectedHost);
    EXPECT_EQ(pairingReports(), std::vector<std::string>{"unconfirmed A"});
}

TEST_F(AutoConnectorTest, ConnectsToADeviceAsSoonAsItIsConfirmed)
{
    paired.forget("A");
    start({"A"}, {"A"});
    paired.add({link.key, "A", {}, {}});
    request(kPairedDevicesDidChange);
    EXPECT_EQ(tried(), "A");
    accept();
    EXPECT_EQ(pairingReports(), std::vector<std::string>{"none "});
}

TEST_F(AutoConnectorTest, PrefersAConfirmedDeviceToAStrangerThatStandsHigher)
{
    paired.forget("A");
    start({"A", "B"}, {"A", "B"});
    EXPECT_EQ(tried(), "B");
}

TEST_F(AutoConnectorTest, TellsNobodyWhoBearsAConfirmedNameAnythingAndWarnsTheUser)
{
    start({"A"}, {"A"});
    link.key = std::string(64, 'e');
    EXPECT_TRUE(std::holds_alternative<LinkGoodbye>(link.prove()));
    link.fail({LinkEndReason::closedHere, ""});
    EXPECT_EQ(pairingReports(), std::vector<std::string>{"changed A"});
    EXPECT_EQ(errorCount(), 0) << "nobody asked for it";
    advance(3);
    EXPECT_EQ(tried(), "AA") << "the real one may come back";
}

TEST_F(AutoConnectorTest, NeverBeginsToCompareUnasked)
{
    start({"A"}, {"A"});
    EXPECT_EQ(link.prove(), LinkTrust(true));
    EXPECT_TRUE(link.mayNotAskUser()) << "the device has forgotten this computer";
    EXPECT_EQ(pairingReports(), std::vector<std::string>{"unconfirmed A"});
}

TEST_F(AutoConnectorTest, RemembersAfterARestartWhatTheUserConfirmed)
{
    start({"A"}, {"A"});
    accept();
    server.reset();
    makeServer();
    start();
    EXPECT_EQ(tried(), "AA");
}

// --- strange lists ---------------------------------------------------------------------------

TEST_F(AutoConnectorTest, SurvivesAListOfStrangeThings)
{
    start({"A"},
          {7, true, PropertyList::Array{"A"}, PropertyList::Dictionary{{"A", 1}}, "", "A", "A"});
    EXPECT_EQ(tried(), "A");
    fail();
    advance(600);
    fake.preferences.writeAsAnotherProcess(kAutoConnectDevices, PropertyList("A"), kApplicationID);
    request(kFVEPrefsDidChangeNotification);
    advance(600);
    EXPECT_EQ(errorCount(), 0);
}

// --- the device that the user chose ------------------------------------------------------------

TEST_F(AutoConnectorTest, BringsBackTheDeviceThatTheUserChose)
{
    preferences.setAutoConnectOption(false);
    connectAsTheUserChose();
    std::string expected = "A";
    for (const LinkEndReason reason :
         {LinkEndReason::silent, LinkEndReason::lost, LinkEndReason::goodbye}) {
        advance(AutoConnector::steadyAfter.count());
        lose(reason);
        advance(3);
        EXPECT_EQ(tried(), expected += "A");
        center.forgetPosts();
        accept();
        EXPECT_EQ(center.countOf(kServerConnectedToDevice), 1);
    }
}

TEST_F(AutoConnectorTest, BringsBackAChosenDeviceThatVanishedWheneverItReturns)
{
    connectAsTheUserChose();
    fake.discovery.remove({"A"});
    lose(LinkEndReason::silent);
    advance(1000);
    EXPECT_EQ(tried(), "A");
    announce({"A"});
    EXPECT_EQ(tried(), "AA");
    fail();
    advance(3);
    EXPECT_EQ(tried(), "AAA") << "tried again, with pauses";
    EXPECT_EQ(errorCount(), 0) << "nobody asked for it now";
}

TEST_F(AutoConnectorTest, BringsBackAnAddressThatTheUserTyped)
{
    start();
    request(kConnectServerToTicket, {{kConnectUsingTicketKey, "192.0.2.1"}});
    accept();
    lose();
    EXPECT_EQ(tried(), "A") << "who takes and ends connections is not stormed";
    advance(2);
    EXPECT_EQ(tried(), "AA");
    EXPECT_EQ(link.attempts.back().endpoints, link.attempts.front().endpoints);
    fail();
    advance(4);
    EXPECT_EQ(tried(), "AAA");
    EXPECT_EQ(errorCount(), 0);
    center.forgetPosts();
    accept();
    const DistributedNotificationCenter::TextUserInfo expected{{kDeviceNameKey, kOtherDeviceName},
                                                               {kDeviceAddressKey, "192.0.2.1"},
                                                               {kCipherKey, link.cipher},
                                                               {kDeviceKeyKey, link.key}};
    ASSERT_EQ(center.countOf(kServerConnectedToDevice), 1);
    EXPECT_EQ(center.postsNamed(kServerConnectedToDevice).front().userInfo, expected);
}

TEST_F(AutoConnectorTest, BringsBackTheChosenDeviceAfterACrash)
{
    connectAsTheUserChose();
    makeServer();
    start();
    EXPECT_EQ(tried(), "AA");
    request(kConnectServerToTicket, {{kConnectUsingTicketKey, "192.0.2.2"}});
    accept();
    makeServer();
    start();
    EXPECT_EQ(tried(), "AABB");
}

TEST_F(AutoConnectorTest, BringsNothingBackThatTheUserWantsNoLonger)
{
    start({"A"}, {});
    const auto connectToA = [this] {
        link.attempts.clear();
        userChooses("A");
        accept();
    };
    connectToA();
    userChoosesNone();
    advance(600);
    EXPECT_EQ(tried(), "A") << "none was chosen";
    connectToA();
    userChooses("B");
    advance(600);
    EXPECT_EQ(tried(), "A") << "another was chosen, which is not there";
    userChooses("A");
    fail();
    link.attempts.clear();
    advance(600);
    EXPECT_EQ(tried(), "") << "the user was told that it failed";
    connectToA();
    request(kTerminateScreenServer);
    makeServer();
    start();
    advance(600);
    EXPECT_EQ(tried(), "A") << "switched off";
}

TEST_F(AutoConnectorTest, WaitsForAChosenDeviceInSightAndForNoOther)
{
    start({"A", "B"}, {"B"});
    accept();
    link.attempts.clear();
    userChooses("A");
    accept();
    setState("A", "Connected");
    lose();
    advance(3);
    EXPECT_EQ(tried(), "AA") << "in use, but perhaps by the connection that broke";
    fail();
    advance(3);
    EXPECT_EQ(tried(), "AA");
    advance(2);
    EXPECT_EQ(tried(), "AAA");
    fake.discovery.remove({"A"});
    fail();
    advance(1);
    EXPECT_EQ(tried(), "AAAB") << "it is gone: the list has its turn";
    accept();
    announce({"A"});
    advance(600);
    EXPECT_EQ(tried(), "AAAB") << "what is connected stays";
    lose();
    advance(60);
    EXPECT_EQ(tried(), "AAABA");
}

TEST_F(AutoConnectorTest, GivesTheListATurnWhileAnAddressDoesNotAnswer)
{
    start({"B"}, {"B"});
    accept();
    request(kConnectServerToTicket, {{kConnectUsingTicketKey, "192.0.2.1"}});
    accept();
    link.attempts.clear();
    lose();
    EXPECT_EQ(tried(), "B");
    fail();
    advance(2);
    EXPECT_EQ(tried(), "BA");
}

TEST_F(AutoConnectorTest, TakesNothingForAChoiceThatACrashLeftHalfWritten)
{
    announce({"A"});
    for (const std::string& text : {std::string("a.loc"), std::string("a.local\n"),
                                    std::string("Other"), std::string(1000, 'a')}) {
        chosenDevice.set(text);
        makeServer();
        start();
        advance(60);
        EXPECT_EQ(tried(), "") << text;
    }
}

} // namespace
