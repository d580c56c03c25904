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

const std::string kDesk = "desk.local";
const Endpoint kDeskEndpoint{"192.168.1.20", 6001, 2};

class ScreenServerTest : public testing::Test
{
protected:
    ScreenServerTest() : preferences(fake.preferences, fake.distributedNotificationCenter)
    {
        server = std::make_shared<ScreenServer>(
            ScreenServer::Services{fake.discovery, fake.runLoop, fake.notificationCenter, center,
                                   preferences, links.maker(), fake.virtualScreens, fake.log,
                                   fake.clock, fake.preferences, chosenDevice},
            ScreenServer::Ending{[this] { ++quitting; }, [this] { ++finished; }});
    }

    void start()
    {
        server->listen();
        server->start();
        fake.runLoop.runUntilIdle();
        center.forgetPosts();
    }
    void request(const char* name, DistributedNotificationCenter::TextUserInfo userInfo = {})
    {
        center.postFromAnotherProcess(name, std::move(userInfo));
        fake.runLoop.runUntilIdle();
    }
    void requestHost(const std::string& hostName)
    {
        request(kConnectServerToHost, {{kConnectToHostNameKey, hostName}});
    }
    void requestTicket(const std::string& address)
    {
        request(kConnectServerToTicket, {{kConnectUsingTicketKey, address}});
    }
    void announceDevice(const std::string& name, const std::string& hostName)
    {
        FakeDevice device{name, hostName};
        device.endpoints = {kDeskEndpoint};
        fake.discovery.announce(std::vector{device});
        settle();
    }
    void advance(double seconds) { fake.runLoop.advance(Duration(seconds)); }
    /// Lets a batch be delivered and resolved.
    void settle() { advance(0.5); }
    /// The desk is on the network and was asked for.
    void requestDesk()
    {
        start();
        announceDevice("Desk", kDesk);
        requestHost(kDesk);
    }
    /// The device accepts, and time passes until that is reported.
    void accept(const std::string& address)
    {
        link.accept(address);
        fake.runLoop.advance(ScreenServer::earliestReport);
    }
    void connectToDesk()
    {
        requestDesk();
        accept("192.168.1.20");
        settle();
        ASSERT_EQ(center.countOf(kServerConnectedToDevice), 1);
        center.forgetPosts();
    }
    /// The names of the reports of the connection so far.
    std::vector<std::string> reports() const
    {
        std::vector<std::string> names;
        for (const auto& post : center.posts()) {
            if (post.name != kFVEPrefsWillChangeNotification &&
                post.name != kFVEPrefsDidChangeNotification && post.name != kServerScreenDidChange)
                names.push_back(post.name);
        }
        return names;
    }
    void expectDevice(const char* name, const std::string& deviceName, const std::string& address)
    {
        const auto posts = center.postsNamed(name);
        ASSERT_THAT(posts, SizeIs(1));
        const DistributedNotificationCenter::TextUserInfo expected{{kDeviceNameKey, deviceName},
                                                                   {kDeviceAddressKey, address},
                                                                   {kCipherKey, link.cipher},
                                                                   {kDeviceKeyKey, link.key}};
        EXPECT_EQ(posts.front().userInfo, expected);
        EXPECT_EQ(posts.front().options, 3U);
        EXPECT_EQ(posts.front().object, "");
    }

    void expectDisconnected(const DistributedNotificationCenter::TextUserInfo& userInfo)
    {
        const auto posts = center.postsNamed(kServerDisconnectedFromDevice);
        ASSERT_THAT(posts, SizeIs(1));
        EXPECT_EQ(posts.front().userInfo, userInfo);
    }

    FakePlatform fake;
    FakeDistributedNotificationCenter& center = fake.distributedNotificationCenter;
    FVEPreferences preferences;
    FakeDeviceLinks links;
    FakeDeviceLink& link = links.first;
    KeptText chosenDevice;
    std::shared_ptr<ScreenServer> server;
    int quitting = 0;
    int finished = 0;
};

TEST_F(ScreenServerTest, SaysThatNothingIsConnectedWhenItStarts)
{
    server->start();
    EXPECT_THAT(reports(), ElementsAre(kServerDisconnectedFromDevice));
    EXPECT_EQ(center.posts().front().options, 3U);
}

TEST_F(ScreenServerTest, AsksAtTheStartForARequestThatItCouldNotHear)
{
    server->listen();
    server->start();
    expectDisconnected({{kAwaitsRequestKey, "YES"}});
    center.forgetPosts();
    request(kQueryRequestForConnectedHost);
    expectDisconnected({});
}

TEST_F(ScreenServerTest, AsksForNoRequestWhenItHeardOneBeforeTheStart)
{
    server->listen();
    requestTicket("10.0.0.7");
    server->start();
    expectDisconnected({});
}

TEST_F(ScreenServerTest, KeepsTheLatestRequestUntilItsTurnComes)
{
    server->listen();
    announceDevice("Desk", kDesk);
    requestTicket("10.0.0.7");
    requestHost(kDesk);
    EXPECT_THAT(reports(), IsEmpty());
    EXPECT_THAT(link.attempts, IsEmpty()) << "another server may still use the device";
    server->start();
    settle();
    ASSERT_THAT(link.attempts, SizeIs(1));
    EXPECT_THAT(link.attempts.front().endpoints, ElementsAre(kDeskEndpoint));
}

TEST_F(ScreenServerTest, ForgetsAWaitingRequestThatIsTakenBack)
{
    server->listen();
    requestTicket("10.0.0.7");
    request(kDisconnectCurrentServerFromHost);
    server->start();
    settle();
    EXPECT_THAT(link.attempts, IsEmpty());
}

TEST_F(ScreenServerTest, DoesNotStartWhenToldToQuitBefore)
{
    server->listen();
    requestTicket("10.0.0.7");
    request(kTerminateScreenServer);
    EXPECT_EQ(quitting, 1);
    server->start();
    advance(1);
    EXPECT_EQ(finished, 1);
    EXPECT_THAT(link.attempts, IsEmpty());
}

TEST_F(ScreenServerTest, ConnectsToNothingByItself)
{
    preferences.setCurrentState(1);
    preferences.setCurrentVirtualScreenDevice(kDesk);
    start();
    announceDevice("Desk", kDesk);
    advance(60);
    EXPECT_THAT(link.attempts, IsEmpty());
}

TEST_F(ScreenServerTest, ConnectsToTheHostThatWasNamedAndReportsItsNameAndAddress)
{
    requestDesk();
    ASSERT_THAT(link.attempts, SizeIs(1));
    EXPECT_THAT(link.attempts.front().endpoints, ElementsAre(kDeskEndpoint));
    EXPECT_THAT(reports(), IsEmpty()) << "nothing is connected yet";
    accept("192.168.1.20");
    expectDevice(kServerConnectedToDevice, kDesk, "192.168.1.20");
    EXPECT_THAT(reports(), SizeIs(1));
}

// The panel's spinner appears a quarter of a second after the choice; a report that comes before it
// does not take it down.
TEST_F(ScreenServerTest, ReportsAConnectionNoEarlierThanTheSpinnerOfThePanelAppears)
{
    requestDesk();
    link.accept("192.168.1.20");
    request(kQueryRequestForConnectedHost);
    advance(0.39);
    EXPECT_THAT(reports(), IsEmpty());
    advance(0.02);
    EXPECT_THAT(reports(), ElementsAre(kServerConnectedToDevice, kQueryResultForConnectedHost));

    center.forgetPosts();
    requestHost(kDesk);
    advance(0.39);
    EXPECT_THAT(reports(), IsEmpty()) << "connected already";
    advance(0.02);
    EXPECT_THAT(reports(), ElementsAre(kServerConnectedToDevice));
}

TEST_F(ScreenServerTest, DoesNotReportAConnectionThatEndedBeforeItsReportWasDue)
{
    start();
    requestTicket("192.0.2.9");
    link.accept("192.0.2.9");
    request(kDisconnectCurrentServerFromHost);
    advance(1);
    EXPECT_THAT(reports(), ElementsAre(kServerDisconnectedFromDevice));
}

TEST_F(ScreenServerTest, ConnectsToAnAddressOnTheMainPort)
{
    start();
    requestTicket("192.0.2.9");
    ASSERT_THAT(link.attempts, SizeIs(1));
    EXPECT_THAT(link.attempts.front().endpoints, ElementsAre(Endpoint{"192.0.2.9", 6001, 0}));
    accept("192.0.2.9");
    expectDevice(kServerConnectedToDevice, "Other", "192.0.2.9");
}

TEST_F(ScreenServerTest, ReportsAnAddressAsItWasTyped)
{
    start();
    requestTicket("2001:DB8:0::9");
    accept("2001:db8::9");
    expectDevice(kServerConnectedToDevice, "Other", "2001:DB8:0::9");
}

TEST_F(ScreenServerTest, WaitsForADeviceThatIsNotKnownYet)
{
    start();
    requestHost(kDesk);
    EXPECT_THAT(link.attempts, IsEmpty());
    advance(3);
    announceDevice("Desk", kDesk);
    EXPECT_THAT(link.attempts, SizeIs(1));
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(ScreenServerTest, WaitsForADeviceThatIsStillBeingResolved)
{
    start();
    FakeDevice device{"Desk", kDesk};
    device.resolve.delay = Duration(2);
    fake.discovery.announce(std::vector{device});
    settle();
    requestHost(kDesk);
    EXPECT_THAT(link.attempts, IsEmpty());
    advance(3);
    EXPECT_THAT(link.attempts, SizeIs(1));
}

TEST_F(ScreenServerTest, AsksForTheErrorTextWhenTheHostIsNotFound)
{
    start();
    announceDevice("Sofa", "sofa.local");
    requestHost(kDesk);
    fake.runLoop.advance(ScreenServer::searchLimit - Duration(0.1));
    EXPECT_THAT(reports(), IsEmpty());
    advance(0.2);
    EXPECT_THAT(reports(), ElementsAre(kRequestingErrorMsgFromPrefPane));
    EXPECT_EQ(center.posts().back().options, 3U);
    EXPECT_TRUE(fake.log.contains("not found"));
}

TEST_F(ScreenServerTest, AsksForTheErrorTextWhenTheDeviceRefusesAndTriesAgainWhenAskedAgain)
{
    requestDesk();
    link.fail("The device refused: in use");
    EXPECT_THAT(reports(), ElementsAre(kRequestingErrorMsgFromPrefPane));
    EXPECT_TRUE(fake.log.contains("in use"));
    EXPECT_EQ(fake.discovery.checkAgainCount(), 1);
    requestHost(kDesk);
    EXPECT_THAT(link.attempts, SizeIs(2));
    accept("192.168.1.20");
    EXPECT_EQ(center.countOf(kServerConnectedToDevice), 1);
}

TEST_F(ScreenServerTest, ReplacesARequestThatIsUnderWay)
{
    start();
    announceDevice("Desk", kDesk);
    announceDevice("Sofa", "sofa.local");
    requestHost(kDesk);
    requestHost("sofa.local");
    EXPECT_THAT(link.attempts, SizeIs(2));
    EXPECT_THAT(link.goodbyes, ElementsAre(LinkGoodbyeCode::byUser));
    accept("192.168.1.30");
    expectDevice(kServerConnectedToDevice, "sofa.local", "192.168.1.30");
    EXPECT_THAT(reports(), SizeIs(1));
}

TEST_F(ScreenServerTest, ReplacesASearchWithoutAnErrorText)
{
    start();
    requestHost("nowhere.local");
    requestTicket("192.0.2.9");
    accept("192.0.2.9");
    advance(30);
    EXPECT_EQ(center.countOf(kRequestingErrorMsgFromPrefPane), 0);
    EXPECT_EQ(center.countOf(kServerConnectedToDevice), 1);
}

TEST_F(ScreenServerTest, GivesASecondSearchItsWholeTime)
{
    start();
    requestHost("nowhere.local");
    advance(4);
    requestHost(kDesk);
    advance(4);
    EXPECT_THAT(reports(), IsEmpty());
    advance(3);
    EXPECT_THAT(reports(), ElementsAre(kRequestingErrorMsgFromPrefPane));
}

TEST_F(ScreenServerTest, ReportsAgainWhenAskedForTheDeviceItIsConnectedTo)
{
    connectToDesk();
    requestHost(kDesk);
    settle();
    EXPECT_THAT(link.attempts, SizeIs(1)) << "nothing is connected anew";
    EXPECT_THAT(link.goodbyes, IsEmpty());
    expectDevice(kServerConnectedToDevice, kDesk, "192.168.1.20");

    center.forgetPosts();
    requestTicket("192.0.2.9");
    accept("192.0.2.9");
    center.forgetPosts();
    requestTicket("192.0.2.9");
    settle();
    EXPECT_THAT(link.attempts, SizeIs(2));
    expectDevice(kServerConnectedToDevice, "Other", "192.0.2.9");
}

TEST_F(ScreenServerTest, LeavesTheOldDeviceWhenItGoesToANewOne)
{
    connectToDesk();
    announceDevice("Sofa", "sofa.local");
    center.forgetPosts();
    requestHost("sofa.local");
    EXPECT_THAT(link.goodbyes, ElementsAre(LinkGoodbyeCode::byUser));
    accept("192.168.1.30");
    EXPECT_THAT(reports(), ElementsAre(kServerDisconnectedFromDevice, kServerConnectedToDevice));
}

TEST_F(ScreenServerTest, AnswersAQueryWithTheDeviceItIsConnectedTo)
{
    connectToDesk();
    request(kQueryRequestForConnectedHost);
    expectDevice(kQueryResultForConnectedHost, kDesk, "192.168.1.20");
    EXPECT_THAT(reports(), SizeIs(1));
}

TEST_F(ScreenServerTest, DisconnectsWhenAsked)
{
    connectToDesk();
    request(kDisconnectCurrentServerFromHost);
    EXPECT_THAT(link.goodbyes, ElementsAre(LinkGoodbyeCode::byUser));
    EXPECT_THAT(reports(), ElementsAre(kServerDisconnectedFromDevice));
    EXPECT_EQ(finished, 0);
}

TEST_F(ScreenServerTest, GivesUpARequestWhenAskedToDisconnect)
{
    start();
    requestHost(kDesk);
    request(kDisconnectCurrentServerFromHost);
    announceDevice("Desk", kDesk);
    advance(30);
    EXPECT_THAT(link.attempts, IsEmpty());
    EXPECT_THAT(reports(), ElementsAre(kServerDisconnectedFromDevice));
}

TEST_F(ScreenServerTest, SaysSoWhenAskedToDisconnectFromNothing)
{
    start();
    request(kDisconnectCurrentServerFromHost);
    EXPECT_THAT(reports(), ElementsAre(kServerDisconnectedFromDevice));
}

TEST_F(ScreenServerTest, ReportsADeviceThatVanishes)
{
    connectToDesk();
    link.end(LinkEndReason::silent);
    EXPECT_THAT(reports(), ElementsAre(kServerDisconnectedFromDevice));
    EXPECT_TRUE(fake.log.contains("The connection to desk.local ended: the end"));
    EXPECT_EQ(fake.discovery.checkAgainCount(), 1);
}

TEST_F(ScreenServerTest, ReportsADeviceThatSaysGoodbye)
{
    connectToDesk();
    link.end(LinkEndReason::goodbye);
    EXPECT_THAT(reports(), ElementsAre(kServerDisconnectedFromDevice));
    EXPECT_EQ(fake.discovery.checkAgainCount(), 0) << "it told the network by itself";
}

TEST_F(ScreenServerTest, SendsTheUsersOptionsWithTheConnection)
{
    preferences.setEnableTouchDisplay(true);
    preferences.setRetinaResolutionsEnabled(false);
    preferences.setAutoMoveWindowsBackOption(true);
    start();
    requestTicket("192.0.2.9");
    ASSERT_THAT(link.attempts, SizeIs(1));
    EXPECT_EQ(link.attempts.front().options, (LinkOptions{true, false, false, true}));
}

TEST_F(ScreenServerTest, SendsChangedOptionsWhileConnected)
{
    connectToDesk();
    const bool before = preferences.enableTouchDisplay();
    preferences.setEnableTouchDisplay(!before);
    fake.runLoop.runUntilIdle();
    ASSERT_THAT(link.sentOptions, SizeIs(1));
    EXPECT_EQ(link.sentOptions.front().touch, !before);
    preferences.setLastOtherDevice("192.0.2.1");
    fake.runLoop.runUntilIdle();
    EXPECT_THAT(link.sentOptions, SizeIs(1)) << "nothing of the device's changed";
}

TEST_F(ScreenServerTest, SendsOptionsThatChangedDuringTheConnect)
{
    start();
    requestTicket("192.0.2.9");
    const bool before = link.attempts.front().options.touch;
    preferences.setEnableTouchDisplay(!before);
    fake.runLoop.runUntilIdle();
    EXPECT_THAT(link.sentOptions, IsEmpty());
    accept("192.0.2.9");
    ASSERT_THAT(link.sentOptions, SizeIs(1));
    EXPECT_EQ(link.sentOptions.front().touch, !before);
}

TEST_F(ScreenServerTest, IsNotEndedByTheStoredState)
{
    connectToDesk();
    preferences.setCurrentState(0);
    advance(60);
    EXPECT_EQ(quitting, 0);
    EXPECT_THAT(link.goodbyes, IsEmpty());
}

TEST_F(ScreenServerTest, QuitsWhenToldTo)
{
    connectToDesk();
    request(kTerminateScreenServer);
    EXPECT_EQ(quitting, 1);
    EXPECT_EQ(finished, 0) << "the goodbye is still on its way";
    EXPECT_THAT(link.goodbyes, ElementsAre(LinkGoodbyeCode::quitting));
    EXPECT_THAT(reports(), ElementsAre(kServerDisconnectedFromDevice));
    link.goodbyeIsSaid();
    EXPECT_EQ(finished, 1);
}

TEST_F(ScreenServerTest, QuitsWithinASecondWhateverTheDeviceDoes)
{
    connectToDesk();
    server->quit();
    advance(1);
    EXPECT_EQ(finished, 1);
    link.goodbyeIsSaid();
    EXPECT_EQ(finished, 1) << "only once";
}

TEST_F(ScreenServerTest, QuitsWithoutABus)
{
    start();
    center.disconnect();
    server->quit();
    link.goodbyeIsSaid();
    EXPECT_EQ(finished, 0) << "the last post may still be on its way";
    advance(0.4);
    EXPECT_EQ(finished, 1);
}

TEST_F(ScreenServerTest, DoesNothingMoreOnceItQuits)
{
    connectToDesk();
    server->quit();
    server->quit();
    requestHost(kDesk);
    request(kQueryRequestForConnectedHost);
    link.end(LinkEndReason::lost);
    EXPECT_EQ(quitting, 1);
    EXPECT_THAT(link.attempts, SizeIs(1));
    EXPECT_THAT(reports(), ElementsAre(kServerDisconnectedFromDevice));
}

TEST_F(ScreenServerTest, AnnouncesItsStateWhenTheBusIsBack)
{
    connectToDesk();
    center.disconnect();
    center.reconnect();
    fake.runLoop.runUntilIdle();
    expectDevice(kServerConnectedToDevice, kDesk, "192.168.1.20");

    request(kDisconnectCurrentServerFromHost);
    center.forgetPosts();
    center.reconnect();
    fake.runLoop.runUntilIdle();
    EXPECT_THAT(reports(), ElementsAre(kServerDisconnectedFromDevice));
}

TEST_F(ScreenServerTest, IgnoresRequestsThatNameNothingUsable)
{
    start();
    request(kConnectServerToHost);
    requestHost("");
    requestHost("Other");
    requestHost(std::string(256, 'x'));
    requestHost("desk\n.local");
    request(kConnectServerToHost, {{"another key", kDesk}});
    request(kConnectServerToTicket);
    requestTicket("");
    requestTicket("desk.local");
    requestTicket("192.0.2.9 ");
    advance(30);
    EXPECT_THAT(link.attempts, IsEmpty());
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(ScreenServerTest, KeepsItsConnectionThroughAnUnusableRequest)
{
    connectToDesk();
    requestHost("");
    requestTicket("nonsense");
    request(kQueryRequestForConnectedHost);
    EXPECT_THAT(link.goodbyes, IsEmpty());
    expectDevice(kQueryResultForConnectedHost, kDesk, "192.168.1.20");
}

TEST_F(ScreenServerTest, DropsLateNewsOfAnEarlierConnection)
{
    start();
    link.accept("192.0.2.9");
    link.fail("late");
    link.end(LinkEndReason::lost);
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(ScreenServerTest, LeavesNothingBehindWhenItIsDestroyedAmidEverything)
{
    connectToDesk();
    requestHost("nowhere.local");
    server->quit();
    server.reset();
    advance(30);
    EXPECT_EQ(finished, 0);
}

// --- the picture -----------------------------------------------------------------------------

class ScreenServerWithAScreen : public ScreenServerTest
{
protected:
    void connectToTablet()
    {
        connectToDesk();
        link.deviceSends(LinkDeviceScreen{1280, 800, 100, 60});
        fake.runLoop.runUntilIdle();
    }
    std::size_t monitors() const { return fake.virtualScreens.monitors().size(); }
    ScreenReport lastReport() const
    {
        const auto posts = center.postsNamed(kServerScreenDidChange);
        return posts.empty() ? ScreenReport{}
                             : screenReport(&posts.back().userInfo.at(kScreenReportKey));
    }
};

TEST_F(ScreenServerWithAScreen, MakesAMonitorForTheDeviceAndSaysSo)
{
    connectToDesk();
    EXPECT_EQ(monitors(), 0U) << "the device has not told its screen";
    link.deviceSends(LinkDeviceScreen{1280, 800, 100, 60});
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(monitors(), 1U);
    EXPECT_EQ(lastReport().state, ScreenReport::State::shown);
    EXPECT_EQ(lastReport().width, 1280);
}

TEST_F(ScreenServerWithAScreen, SaysItAgainToWhoeverAsks)
{
    connectToTablet();
    center.forgetPosts();
    request(kQueryRequestForConnectedHost);
    EXPECT_EQ(lastReport().state, ScreenReport::State::shown);
    EXPECT_EQ(center.posts().back().options, 3U);
}

TEST_F(ScreenServerWithAScreen, RemovesTheMonitorWithTheConnection)
{
    connectToTablet();
    request(kDisconnectCurrentServerFromHost);
    EXPECT_EQ(monitors(), 0U);
    EXPECT_EQ(lastReport(),
              (ScreenReport{.state = ScreenReport::State::possible, .way = ScreenWay::gnome}));
}

TEST_F(ScreenServerWithAScreen, SaysBeforeADeviceIsTriedThatItWouldHaveNoPicture)
{
    start();
    fake.virtualScreens.setObstacle(ScreenObstacle::notPermitted);
    request(kQueryRequestForConnectedHost);
    EXPECT_EQ(lastReport(), (ScreenReport{.state = ScreenReport::State::impossible,
                                          .obstacle = ScreenObstacle::notPermitted}));
    fake.virtualScreens.setObstacle({});
    request(kQueryRequestForConnectedHost);
    EXPECT_EQ(lastReport().state, ScreenReport::State::possible) << "asked anew";
}

TEST_F(ScreenServerWithAScreen, RemovesTheMonitorOfADeviceThatIsLost)
{
    connectToTablet();
    link.end(LinkEndReason::silent);
    EXPECT_EQ(monitors(), 0U);
}

TEST_F(ScreenServerWithAScreen, RemovesTheMonitorBeforeItSaysGoodbyeAtTheEnd)
{
    connectToTablet();
    link.onDisconnect = [this] { EXPECT_EQ(monitors(), 0U); };
    server->quit();
    EXPECT_THAT(link.goodbyes, ElementsAre(LinkGoodbyeCode::quitting));
}

TEST_F(ScreenServerWithAScreen, RemovesTheMonitorWhenItGoesToAnotherDevice)
{
    connectToTablet();
    requestTicket("192.168.1.99");
    EXPECT_EQ(monitors(), 0U);
    accept("192.168.1.99");
    EXPECT_EQ(monitors(), 0U) << "the other one has not told its screen";
}

TEST_F(ScreenServerWithAScreen, LeavesADeviceThatShowedWhatItWasNotSent)
{
    connectToTablet();
    link.deviceSends(LinkShown{7, 100});
    EXPECT_THAT(link.goodbyes, ElementsAre(LinkGoodbyeCode::brokenRule));
    EXPECT_EQ(monitors(), 0U);
    EXPECT_EQ(center.countOf(kServerDisconnectedFromDevice), 1);
}

TEST_F(ScreenServerWithAScreen, RemembersTheMonitorOfAnAddressByTheAddress)
{
    start();
    requestTicket("192.168.1.99");
    preferences.setDeviceScreen("192.168.1.99", storedScreen({.side = ScreenSide::below}));
    accept("192.168.1.99");
    link.deviceSends(LinkDeviceScreen{1280, 800, 100, 60});
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(lastReport().monitor.y, 1080);
}

} // namespace
