// The question before a device is trusted, and what became of it, in the card.

#include "Common/PairedPeers.h"
#include "Tests/Source/SheetFixture.h"

#include <gmock/gmock.h>

namespace
{

using farview::PairedPeer;
using farview::PairedPeers;
using farview::PairingReport;
using State = PairingReport::State;
using testing::ElementsAre;
using testing::IsEmpty;

const PairingReport comparing{State::comparing, "482913", "Pad"};
const PairingReport confirmed{State::confirmed, "482913", "Pad"};
const PairingReport unconfirmed{State::unconfirmed, "", "Pad"};
const PairingReport changed{State::changed, "", "Pad"};
const PairingReport refusedThere{State::refusedThere, "", "Pad"};
constexpr const char* normalText =
    "When you select a device, the screen will go blue as the system adds a new screen.";

class PanePairing : public SheetFixture
{
protected:
    void serverReports(const PairingReport& report)
    {
        serverPosts(kServerPairingDidChange, {{kPairingReportKey, textOfPairingReport(report)}});
    }
    void serverGivesUp() { serverPosts(kRequestingErrorMsgFromPrefPane); }
    /// The user has chosen Pad, and the server has heard it.
    void choosePad()
    {
        fake.processTable.add(4711, "ScreenCapture");
        showWithPad();
        ASSERT_TRUE(choose("Pad"));
        after(0.01);
    }
    void choosePadWith(const PairingReport& report)
    {
        choosePad();
        serverReports(report);
    }
    bool boxShows() const { return !pane->pairingBox()->isHidden(); }
    std::string said() const { return pane->pairingLabel()->stringValue(); }
    bool errorIsSaid() const
    {
        return pane->pairingLabel()->textRole() == farview::TextField::Role::error;
    }
    bool digitsShow() const { return !pane->pairingDigitsLabel()->isHidden(); }
    /// The titles of the answers that there are.
    Texts answers() const
    {
        Texts titles;
        for (const auto& button : {pane->pairingYesButton(), pane->pairingNoButton()}) {
            if (!button->isHidden())
                titles.push_back(button->title());
        }
        return titles;
    }
    /// The button as the interface file wires it.
    void press(const std::shared_ptr<farview::Button>& button, const char* action)
    {
        ASSERT_FALSE(button->isHidden());
        button->setTarget(pane);
        button->setAction({action});
        button->performClick(nullptr);
        fake.runLoop.runUntilIdle();
    }
    void pressYes() { press(pane->pairingYesButton(), "pairingYesPressed:"); }
    void pressNo() { press(pane->pairingNoButton(), "pairingNoPressed:"); }
    PairedPeers peers() { return {fake.preferences, PairedPeers::devices}; }
};

TEST_F(PanePairing, NothingIsAskedBeforeTheServerAsks)
{
    choosePad();
    EXPECT_FALSE(boxShows());
    EXPECT_THAT(answers(), IsEmpty());
}

TEST_F(PanePairing, TheQuestionShowsTheDigitsAndTwoAnswers)
{
    choosePadWith(comparing);
    EXPECT_TRUE(boxShows());
    EXPECT_EQ(said(), "Does Pad show 482\u00A0913?");
    EXPECT_FALSE(errorIsSaid());
    EXPECT_TRUE(digitsShow());
    EXPECT_EQ(pane->pairingDigitsLabel()->stringValue(), "482\u00A0913");
    EXPECT_THAT(answers(), ElementsAre("Yes, These Digits", "No"));
}

TEST_F(PanePairing, YesAndNoGoToTheServerWithTheDigits)
{
    const farview::DistributedNotificationCenter::TextUserInfo digits{{kDigitsKey, "482913"}};
    choosePadWith(comparing);
    after(1);
    pressYes();
    EXPECT_THAT(posts(kConfirmDevice), ElementsAre(Post{kConfirmDevice, "", digits, 3}));
    EXPECT_THAT(posts(kRefuseDevice), IsEmpty());
    pressNo();
    EXPECT_THAT(posts(kRefuseDevice), ElementsAre(Post{kRefuseDevice, "", digits, 3}));
}

// The question appears where the open menu was, on which the second click may still be on its way.
TEST_F(PanePairing, AYesThatComesTooSoonToBeMeantIsNone)
{
    choosePadWith(comparing);
    pressYes();
    EXPECT_THAT(posts(kConfirmDevice), IsEmpty());
    after(0.9);
    serverReports({State::comparing, "004711", "Pad"});
    after(0.9);
    pressYes();
    EXPECT_THAT(posts(kConfirmDevice), IsEmpty()) << "these digits are newer";
    after(0.1);
    pressYes();
    EXPECT_EQ(posts(kConfirmDevice).size(), 1U);
    EXPECT_TRUE(pane->pairingNoButton()->isEnabled());
}

TEST_F(PanePairing, AfterTheYesItIsTheDevicesTurnAndCanBeGivenUp)
{
    choosePadWith(comparing);
    serverReports(confirmed);
    EXPECT_EQ(said(), "Now confirm it at Pad, too.");
    EXPECT_TRUE(digitsShow());
    EXPECT_THAT(answers(), ElementsAre("Cancel"));
    pressNo();
    EXPECT_EQ(posts(kRefuseDevice).size(), 1U);
}

TEST_F(PanePairing, TheQuestionGoesWhenTheDeviceIsConnected)
{
    choosePadWith(confirmed);
    serverReports({});
    serverConnectedTo("pad.local");
    EXPECT_FALSE(boxShows());
    EXPECT_EQ(hint(), "Connected to Pad");
}

TEST_F(PanePairing, NeitherSpinnerNorErrorComeWhileTheUserCompares)
{
    choosePadWith(comparing);
    for (int second = 0; second < 100; ++second) {
        after(1);
        ASSERT_FALSE(spinnerShows()) << second;
        ASSERT_FALSE(warningShows()) << second;
    }
    EXPECT_TRUE(popUpIsEnabled());
    EXPECT_EQ(popUpWidth(), fullWidth);
    EXPECT_EQ(instructions(), normalText);
    EXPECT_TRUE(boxShows());
}

TEST_F(PanePairing, AQuestionThatComesLaterTakesTheSpinnerDown)
{
    choosePad();
    after(2);
    ASSERT_TRUE(spinnerShows());
    serverReports(comparing);
    EXPECT_FALSE(spinnerShows());
    EXPECT_EQ(popUpWidth(), fullWidth);
}

TEST_F(PanePairing, AQuestionBringsTheDevicesToTheFrontOnce)
{
    choosePad();
    pane->tabView()->selectTabViewItemWithIdentifier("Settings");
    serverReports(comparing);
    EXPECT_EQ(pane->tabView()->selectedIdentifier(), "Main");
    pane->tabView()->selectTabViewItemWithIdentifier("Settings");
    serverReports(comparing);
    EXPECT_EQ(pane->tabView()->selectedIdentifier(), "Settings") << "the server repeated itself";
    serverReports(refusedThere);
    EXPECT_EQ(pane->tabView()->selectedIdentifier(), "Settings");
}

TEST_F(PanePairing, WhyItFailedTakesThePlaceOfTheGeneralErrorWhicheverComesFirst)
{
    for (const bool errorIsFirst : {true, false}) {
        SCOPED_TRACE(errorIsFirst);
        newPane();
        choosePadWith(comparing);
        if (errorIsFirst)
            serverGivesUp();
        serverReports(refusedThere);
        if (!errorIsFirst)
            serverGivesUp();
        EXPECT_EQ(said(), "Somebody said no at Pad. No picture was sent.");
        EXPECT_TRUE(errorIsSaid());
        EXPECT_FALSE(digitsShow());
        EXPECT_THAT(answers(), IsEmpty());
        EXPECT_EQ(instructions(), normalText);
        EXPECT_FALSE(warningShows());
        EXPECT_EQ(pane->connectionHelpLabel()->stringValue(), "");
        EXPECT_TRUE(pane->connectionDiagnoseButton()->isHidden());
        hide();
    }
}

TEST_F(PanePairing, AnEndWithoutAWhyIsTheGeneralError)
{
    choosePadWith(comparing);
    serverGivesUp();
    serverReports({});
    EXPECT_TRUE(warningShows());
    EXPECT_FALSE(boxShows());
}

TEST_F(PanePairing, WhyItFailedStaysUntilTheNextRequest)
{
    choosePadWith(refusedThere);
    after(300);
    announce({device("Slab", "slab.local")});
    EXPECT_TRUE(boxShows());
    ASSERT_TRUE(choose("Slab"));
    after(0.01);
    EXPECT_FALSE(boxShows());
}

TEST_F(PanePairing, ChoosingNoDeviceTakesTheQuestionAway)
{
    choosePadWith(comparing);
    ASSERT_TRUE(choose(noDevice));
    EXPECT_FALSE(boxShows());
    EXPECT_EQ(posts(kDisconnectCurrentServerFromHost).size(), 1U);
}

TEST_F(PanePairing, ADeviceToBeConfirmedIsAHintThatLeavesAnErrorOnShow)
{
    choosePad();
    serverGivesUp();
    serverReports(unconfirmed);
    EXPECT_EQ(said(), "Pad is there, but you have never confirmed it.");
    EXPECT_FALSE(errorIsSaid());
    EXPECT_THAT(answers(), IsEmpty());
    EXPECT_TRUE(warningShows());
}

TEST_F(PanePairing, AnotherKeyIsRefusedAndForgettingTheOldOneAsksAgain)
{
    peers().add({std::string(64, 'a'), "Pad", {}, {}});
    peers().add({std::string(64, 'b'), "Slab", {}, {}});
    choosePadWith(changed);
    serverGivesUp();
    EXPECT_EQ(said(), "This is not the Pad that you confirmed. No picture was sent.");
    EXPECT_TRUE(errorIsSaid());
    EXPECT_THAT(answers(), ElementsAre("Forget the Old One"));
    ASSERT_EQ(posts(kConnectServerToHost).size(), 1U);
    after(1);
    pressYes();
    ASSERT_EQ(peers().all().size(), 1U);
    EXPECT_EQ(peers().all().front().name, "Slab");
    EXPECT_EQ(posts(kPairedDevicesDidChange).size(), 1U);
    ASSERT_EQ(posts(kConnectServerToHost).size(), 2U);
    EXPECT_EQ(posts(kConnectServerToHost).back().userInfo.at(kConnectToHostNameKey), "pad.local");
    EXPECT_FALSE(boxShows());
    EXPECT_THAT(posts(kConfirmDevice), IsEmpty()) << "nothing was compared";
    serverReports(comparing);
    EXPECT_THAT(answers(), ElementsAre("Yes, These Digits", "No"));
}

TEST_F(PanePairing, ADeviceThatHasGoneIsForgottenAndNothingIsAsked)
{
    peers().add({std::string(64, 'a'), "Pad", {}, {}});
    choosePadWith(changed);
    leave({"Pad"});
    after(1);
    pressYes();
    EXPECT_THAT(peers().all(), IsEmpty());
    EXPECT_EQ(posts(kConnectServerToHost).size(), 1U);
    EXPECT_FALSE(boxShows());
}

TEST_F(PanePairing, APaneThatIsShownWhileTheUserComparesShowsTheQuestion)
{
    showWithPad();
    ASSERT_EQ(posts(kQueryRequestForConnectedHost).empty(), false);
    serverReports(comparing);
    EXPECT_TRUE(boxShows());
}

TEST_F(PanePairing, NothingStaleRemains)
{
    const struct {
        const char* what;
        std::function<void()> happens;
    } cases[] = {
        {"another server",
         [this] {
             serverPosts(kServerDisconnectedFromDevice, {{kAwaitsRequestKey, "YES"}});
         }},
        {"the bus was away",
         [this] {
             fake.distributedNotificationCenter.reconnect();
             fake.runLoop.runUntilIdle();
         }},
        {"the pane was away",
         [this] {
             hide();
             show();
         }},
        {"Farview was switched off", [this] { changeElsewhere(kCurrentState, 0); }},
        {"nonsense",
         [this] {
             serverPosts(kServerPairingDidChange, {{kPairingReportKey, "?"}});
         }},
        {"the server has died",
         [this] {
             fake.processTable.remove(4711);
             after(11);
         }},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        newPane();
        choosePadWith(comparing);
        ASSERT_TRUE(boxShows());
        each.happens();
        EXPECT_FALSE(boxShows());
        hide();
    }
}

TEST_F(PanePairing, TheQuestionStaysWhenTheWatchdogFindsThatTheServerRunsAfterAll)
{
    showWithPad();
    after(11);
    ASSERT_EQ(switchState(), 0) << "no server was seen";
    fake.processTable.add(4711, "ScreenCapture");
    serverReports(comparing);
    after(11);
    ASSERT_EQ(switchState(), 1);
    EXPECT_TRUE(boxShows());
}

TEST_F(PanePairing, TheSheetForAnAddressGivesWayToTheQuestion)
{
    open();
    type("10.0.0.5");
    pressOK();
    ASSERT_TRUE(sheet().isOpen());
    serverReports({State::comparing, "482913", "10.0.0.5"});
    EXPECT_FALSE(sheet().isOpen());
    EXPECT_TRUE(boxShows());
    serverPosts(kServerConnectedToDevice,
                {{kDeviceNameKey, kOtherDeviceName}, {kDeviceAddressKey, "10.0.0.5"}});
    EXPECT_EQ(hint(), "Connected to 10.0.0.5");
    EXPECT_EQ(FVEPreferences::sharedAppPrefs().lastOtherDevice(), "10.0.0.5");
}

TEST_F(PanePairing, TheSheetGivesWayToAFailureAlsoAfterItsOwnErrorButNotWhileTheUserTypes)
{
    open();
    type("10.0.0.5");
    serverReports(changed);
    EXPECT_TRUE(sheet().isOpen());
    pressOK();
    serverGivesUp();
    serverReports({State::tooOld, "", "10.0.0.5"});
    EXPECT_FALSE(sheet().isOpen());
}

} // namespace
