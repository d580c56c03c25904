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
using State = PairingReport::State;

namespace
{

const std::string tablet = "tablet.local";
const std::string tabletKey(64, 'd');

/// A server, and a device "Tablet" in sight that it knows nothing of.
class ScreenServerPairing : public testing::Test
{
protected:
    ScreenServerPairing() : preferences(fake.preferences, fake.distributedNotificationCenter)
    {
        server = std::make_shared<ScreenServer>(
            ScreenServer::Services{fake.discovery, fake.runLoop, fake.notificationCenter, center,
                                   preferences, links.maker(), fake.virtualScreens, fake.log,
                                   fake.clock, fake.preferences, chosenDevice},
            ScreenServer::Ending{});
        FakeDevice device{"Tablet", tablet};
        device.endpoints = {Endpoint{"192.168.1.20", 6001, 2}};
        fake.discovery.announce(std::vector{device});
    }

    void start()
    {
        server->listen();
        server->start();
        advance(0.5);
        center.forgetPosts();
    }
    /// The device is ticked, and the server connects by itself.
    void startAutomatically()
    {
        preferences.setAutoConnectOption(true);
        preferences.setAutoConnectDevices({PropertyList("Tablet")});
        preferences.setCurrentState(1);
        start();
        advance(10);
    }
    void advance(double seconds) { fake.runLoop.advance(Duration(seconds)); }
    void request(const char* name, DistributedNotificationCenter::TextUserInfo userInfo = {})
    {
        center.postFromAnotherProcess(name, std::move(userInfo));
        fake.runLoop.runUntilIdle();
    }
    void requestTablet() { request(kConnectServerToHost, {{kConnectToHostNameKey, tablet}}); }
    void answer(const char* name, const std::string& digits)
    {
        request(name, {{kDigitsKey, digits}});
    }
    /// The user asks for the device, and is shown digits.
    void compare()
    {
        requestTablet();
        EXPECT_EQ(std::get<bool>(link.prove()), false);
        ASSERT_FALSE(link.mayNotAskUser());
        link.showDigits("482913");
    }
    void failToCompare()
    {
        compare();
        link.fail(LinkEnd{LinkEndReason::lost, "gone"});
    }
    void know(const std::string& name, const std::string& key) { known.add({key, name, {1}, {1}}); }
    /// What is reported now, and was reported last.
    PairingReport reported()
    {
        const auto posts = center.postsNamed(kServerPairingDidChange);
        if (posts.empty())
            return {};
        EXPECT_EQ(posts.back().options, 3U);
        const auto found = posts.back().userInfo.find(kPairingReportKey);
        return pairingReport(found == posts.back().userInfo.end() ? nullptr : &found->second);
    }
    int errors() const { return center.countOf(kRequestingErrorMsgFromPrefPane); }

    FakePlatform fake;
    FakeDistributedNotificationCenter& center = fake.distributedNotificationCenter;
    FVEPreferences preferences;
    PairedPeers known{fake.preferences, PairedPeers::devices};
    FakeDeviceLinks links;
    FakeDeviceLink& link = links.first;
    KeptText chosenDevice;
    std::shared_ptr<ScreenServer> server;
};

TEST_F(ScreenServerPairing, ShowsTheDigitsOfAStrangerAndStoresNothing)
{
    start();
    compare();
    EXPECT_EQ(reported(), (PairingReport{State::comparing, "482913", "Tablet"}));
    EXPECT_THAT(known.all(), IsEmpty());
    EXPECT_EQ(center.countOf(kServerConnectedToDevice), 0);
}

TEST_F(ScreenServerPairing, KeepsADeviceThatBothUsersConfirmed)
{
    start();
    compare();
    answer(kConfirmDevice, "482913");
    EXPECT_EQ(reported(), (PairingReport{State::confirmed, "482913", "Tablet"}));
    EXPECT_EQ(link.confirmations, 1);
    EXPECT_THAT(known.all(), IsEmpty()) << "the device's user has not confirmed yet";
    link.wasPaired = true;
    link.accept("192.168.1.20");
    advance(1);
    EXPECT_EQ(reported(), PairingReport{});
    EXPECT_EQ(center.countOf(kServerConnectedToDevice), 1);
    ASSERT_THAT(known.all(), SizeIs(1));
    EXPECT_EQ(known.all().front().key, tabletKey);
    EXPECT_EQ(known.all().front().name, "Tablet");
}

TEST_F(ScreenServerPairing, TakesNoAnswerToOtherDigits)
{
    start();
    answer(kConfirmDevice, "");
    compare();
    answer(kConfirmDevice, "482914");
    answer(kRefuseDevice, "482914");
    request(kConfirmDevice);
    EXPECT_EQ(link.confirmations, 0);
    EXPECT_EQ(reported().state, State::comparing);
    answer(kConfirmDevice, "482913");
    answer(kConfirmDevice, "482913");
    EXPECT_EQ(link.confirmations, 1);
}

TEST_F(ScreenServerPairing, LeavesADeviceThatTheUserRefuses)
{
    start();
    compare();
    answer(kRefuseDevice, "482913");
    EXPECT_EQ(reported(), PairingReport{});
    EXPECT_THAT(link.goodbyes, ElementsAre(LinkGoodbyeCode::notConfirmed));
    EXPECT_EQ(errors(), 0) << "the user knows";
    EXPECT_THAT(known.all(), IsEmpty());
}

TEST_F(ScreenServerPairing, TheUserMayChangeTheMindAfterYes)
{
    start();
    compare();
    answer(kConfirmDevice, "482913");
    answer(kRefuseDevice, "482913");
    EXPECT_EQ(reported(), PairingReport{});
    EXPECT_THAT(link.goodbyes, ElementsAre(LinkGoodbyeCode::notConfirmed));
}

TEST_F(ScreenServerPairing, TellsHowAPairingEndedWithoutTheUsersWill)
{
    struct Case {
        LinkEnd end;
        State state;
    };
    const auto goodbye = [](LinkGoodbyeCode code) {
        return LinkEnd{LinkEndReason::goodbye, "", std::nullopt, code};
    };
    const std::vector<Case> cases{
        {goodbye(LinkGoodbyeCode::notConfirmed), State::refusedThere},
        {goodbye(LinkGoodbyeCode::tooManyTries), State::tooManyTries},
        {goodbye(LinkGoodbyeCode::quitting), State::notCompared},
        {{LinkEndReason::lost, ""}, State::notCompared},
        {{LinkEndReason::notAnswered, ""}, State::notCompared},
        {{LinkEndReason::silent, ""}, State::notCompared},
        {{LinkEndReason::notSecured, ""}, State::interfered},
    };
    start();
    for (const auto& [end, state] : cases) {
        center.forgetPosts();
        compare();
        link.fail(end);
        EXPECT_EQ(reported(), (PairingReport{state, "", "Tablet"}));
        EXPECT_EQ(errors(), 1);
        // So that the guard forgets it.
        advance(601);
    }
    EXPECT_THAT(known.all(), IsEmpty());
}

TEST_F(ScreenServerPairing, TellsWhyADeviceCannotEvenBeComparedWith)
{
    struct Case {
        LinkEnd end;
        State state;
    };
    const std::vector<Case> cases{
        {{LinkEndReason::noAgreement, "", LinkRefusalCode::noAgreement}, State::tooOld},
        {{LinkEndReason::notSecured, ""}, State::interfered},
        {{LinkEndReason::noOwnKey, "it is broken"}, State::keyUnusable},
        {{LinkEndReason::goodbye, "", std::nullopt, LinkGoodbyeCode::tooManyTries},
         State::tooManyTries},
        {{LinkEndReason::noAgreement, "what was not offered"}, State::interfered},
        {{LinkEndReason::goodbye, "", std::nullopt, LinkGoodbyeCode::inUse}, State::none},
        {{LinkEndReason::refused, "", LinkRefusalCode::inUse}, State::none},
        {{LinkEndReason::lost, ""}, State::none},
    };
    start();
    for (const auto& [end, state] : cases) {
        center.forgetPosts();
        requestTablet();
        link.fail(end);
        EXPECT_EQ(reported().state, state);
        EXPECT_EQ(errors(), 1);
    }
}

TEST_F(ScreenServerPairing, AReportStandsUntilTheUserAsksForSomething)
{
    start();
    failToCompare();
    advance(3600);
    EXPECT_EQ(reported().state, State::notCompared);
    requestTablet();
    EXPECT_EQ(reported(), PairingReport{});
}

TEST_F(ScreenServerPairing, TellsItAgainToWhoeverAsks)
{
    start();
    compare();
    center.forgetPosts();
    request(kQueryRequestForConnectedHost);
    EXPECT_EQ(reported(), (PairingReport{State::comparing, "482913", "Tablet"}));
}

TEST_F(ScreenServerPairing, TheSameRequestAgainGoesOnWithTheSameDigits)
{
    start();
    compare();
    requestTablet();
    EXPECT_THAT(link.attempts, SizeIs(1));
    EXPECT_EQ(reported().digits, "482913");
    EXPECT_THAT(link.goodbyes, IsEmpty());
}

TEST_F(ScreenServerPairing, AnotherChoiceEndsThePairing)
{
    start();
    compare();
    request(kConnectServerToTicket, {{kConnectUsingTicketKey, "192.0.2.9"}});
    EXPECT_EQ(reported(), PairingReport{});
    EXPECT_THAT(link.goodbyes, ElementsAre(LinkGoodbyeCode::notConfirmed));
    answer(kConfirmDevice, "482913");
    EXPECT_EQ(link.confirmations, 0) << "these digits were of another device";
}

TEST_F(ScreenServerPairing, QuittingEndsThePairing)
{
    start();
    compare();
    server->quit();
    EXPECT_EQ(reported(), PairingReport{});
    answer(kConfirmDevice, "482913");
    EXPECT_EQ(link.confirmations, 0);
    EXPECT_THAT(known.all(), IsEmpty());
}

TEST_F(ScreenServerPairing, AKnownDeviceIsConnectedWithoutAQuestion)
{
    know("Tablet", tabletKey);
    start();
    requestTablet();
    EXPECT_EQ(std::get<bool>(link.prove()), true);
    link.accept("192.168.1.20");
    advance(1);
    EXPECT_EQ(center.countOf(kServerPairingDidChange), 0);
    EXPECT_GT(known.all().front().lastUsed.secondsSince1970, 1);
}

TEST_F(ScreenServerPairing, AnotherDeviceUnderAKnownNameGetsNothing)
{
    know("Tablet", std::string(64, 'e'));
    start();
    requestTablet();
    const auto trust = link.prove();
    ASSERT_TRUE(std::holds_alternative<LinkGoodbye>(trust));
    EXPECT_EQ(reported(), (PairingReport{State::changed, "", "Tablet"}));
    link.fail({LinkEndReason::closedHere, ""});
    EXPECT_EQ(reported().state, State::changed) << "until the user decides";
    EXPECT_EQ(errors(), 1);
    EXPECT_EQ(known.all().front().key, std::string(64, 'e'));

    known.forget("Tablet");
    request(kPairedDevicesDidChange);
    compare();
    EXPECT_EQ(reported().state, State::comparing);
}

TEST_F(ScreenServerPairing, ADeviceReachedByItsAddressIsKnownByItsKey)
{
    start();
    request(kConnectServerToTicket, {{kConnectUsingTicketKey, "192.0.2.9"}});
    EXPECT_EQ(std::get<bool>(link.prove()), false);
    ASSERT_FALSE(link.mayNotAskUser());
    link.showDigits("000913");
    EXPECT_EQ(reported(), (PairingReport{State::comparing, "000913", "192.0.2.9"}));
    answer(kConfirmDevice, "000913");
    link.wasPaired = true;
    link.accept("192.0.2.9");
    ASSERT_THAT(known.all(), SizeIs(1));
    EXPECT_EQ(known.all().front().name, "");
    request(kConnectServerToTicket, {{kConnectUsingTicketKey, "192.0.2.10"}});
    EXPECT_EQ(std::get<bool>(link.prove()), true);
}

TEST_F(ScreenServerPairing, LeavesTheConnectedDeviceThatTheUserForgets)
{
    know("Tablet", tabletKey);
    start();
    requestTablet();
    link.accept("192.168.1.20");
    advance(1);
    request(kPairedDevicesDidChange);
    EXPECT_THAT(link.goodbyes, IsEmpty()) << "it is known still";
    known.forget("Tablet");
    request(kPairedDevicesDidChange);
    EXPECT_THAT(link.goodbyes, ElementsAre(LinkGoodbyeCode::byUser));
    EXPECT_EQ(chosenDevice.text(), "") << "it is not brought back";
}

TEST_F(ScreenServerPairing, ThreeFailuresEndPairingForTenMinutes)
{
    start();
    for (int count = 0; count < 3; ++count)
        failToCompare();
    requestTablet();
    link.prove();
    EXPECT_TRUE(link.mayNotAskUser());
    EXPECT_EQ(reported(), (PairingReport{State::tooManyTries, "", "Tablet"}));
    link.fail({LinkEndReason::closedHere, ""});
    EXPECT_EQ(reported().state, State::tooManyTries);

    know("Tablet", tabletKey);
    requestTablet();
    EXPECT_EQ(std::get<bool>(link.prove()), true) << "whoever is known still connects";

    known.forget("Tablet");
    advance(600);
    compare();
    EXPECT_EQ(reported().state, State::comparing);
}

// Nobody guessed: the device was asking its user about another computer, for example.
TEST_F(ScreenServerPairing, AnAttemptThatShowedNoDigitsIsNoFailure)
{
    start();
    for (int count = 0; count < 5; ++count) {
        requestTablet();
        link.prove();
        ASSERT_FALSE(link.mayNotAskUser()) << count;
        link.fail({LinkEndReason::goodbye, "", std::nullopt, LinkGoodbyeCode::inUse});
        EXPECT_EQ(reported(), PairingReport{}) << "the usual error says it";
    }
}

TEST_F(ScreenServerPairing, ADeviceThatLeavesOnceItCouldKnowTheDigitsHadItsGuess)
{
    start();
    for (int count = 0; count < 3; ++count) {
        requestTablet();
        link.prove();
        ASSERT_FALSE(link.mayNotAskUser()) << count;
        link.guessIsSpent = true;
        link.fail({LinkEndReason::lost, ""});
        EXPECT_EQ(reported().state, State::notCompared);
    }
    requestTablet();
    link.prove();
    EXPECT_TRUE(link.mayNotAskUser());
}

TEST_F(ScreenServerPairing, ADeviceThatCannotBeStoredIsConnectedAllTheSame)
{
    start();
    compare();
    fake.preferences.setWritesFail(true);
    answer(kConfirmDevice, "482913");
    link.wasPaired = true;
    link.accept("192.168.1.20");
    advance(1);
    EXPECT_EQ(center.countOf(kServerConnectedToDevice), 1);
    EXPECT_TRUE(fake.log.contains("cannot be remembered"));
}

// --- by itself -------------------------------------------------------------------------------

TEST_F(ScreenServerPairing, SaysOnceThatATickedDeviceWasNeverConfirmed)
{
    startAutomatically();
    EXPECT_THAT(link.attempts, IsEmpty());
    EXPECT_EQ(reported(), (PairingReport{State::unconfirmed, "", "Tablet"}));
    EXPECT_EQ(errors(), 0);
    compare();
    EXPECT_EQ(reported().state, State::comparing);
}

TEST_F(ScreenServerPairing, NeverPairsUnasked)
{
    know("Tablet", tabletKey);
    startAutomatically();
    ASSERT_THAT(link.attempts, SizeIs(1));
    EXPECT_EQ(std::get<bool>(link.prove()), true);
    EXPECT_TRUE(link.mayNotAskUser()) << "the device has forgotten this computer";
    EXPECT_EQ(reported(), (PairingReport{State::unconfirmed, "", "Tablet"}));
    link.fail({LinkEndReason::closedHere, ""});
    EXPECT_EQ(errors(), 0);
}

TEST_F(ScreenServerPairing, TellsOfAChangedKeyAndOfInterferenceAlsoUnasked)
{
    know("Tablet", std::string(64, 'e'));
    startAutomatically();
    link.prove();
    EXPECT_EQ(reported().state, State::changed);
    link.fail({LinkEndReason::closedHere, ""});
    advance(60);
    link.fail({LinkEndReason::notSecured, ""});
    EXPECT_EQ(reported().state, State::interfered);
    EXPECT_EQ(errors(), 0);
}

TEST_F(ScreenServerPairing, AChoiceWhileAnAttemptIsBeingLeftBeginsAnew)
{
    know("Tablet", tabletKey);
    startAutomatically();
    link.prove();
    EXPECT_TRUE(link.mayNotAskUser());
    requestTablet();
    EXPECT_THAT(link.attempts, SizeIs(2)) << "the first is saying goodbye";
    EXPECT_FALSE(link.mayNotAskUser());
}

TEST_F(ScreenServerPairing, AChoiceDuringAnAttemptTakesItOver)
{
    know("Tablet", tabletKey);
    startAutomatically();
    requestTablet();
    EXPECT_THAT(link.attempts, SizeIs(1));
    link.prove();
    EXPECT_FALSE(link.mayNotAskUser()) << "now the user has asked for it";
}

} // namespace
