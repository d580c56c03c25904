#include "Applications/FarviewStatusItem/StatusMenu.h"

#include "Applications/FarviewStatusItem/MenuLayout.h"
#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/Rules/PairingTexts.h"
#include "Platform/Fake/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::ElementsAre;
using testing::IsEmpty;
using State = PairingReport::State;

namespace
{

class StatusMenuTest : public testing::Test
{
protected:
    using Post = FakeDistributedNotificationCenter::Post;

    StatusMenuTest()
    {
        pane = fake.bundles.add("/opt/Farview Preferences.prefPane");
        pane->addResource("ScreenCapture", "app");
        fake.registry.publish(kFVEKextName);
    }

    /// A status item with that stored state, its first notifications behind it.
    void startWith(long state)
    {
        preferences.setupDefaultValues();
        preferences.setCurrentState(state);
        menu = std::make_shared<StatusMenu>(
            StatusMenu::Services{fake.platform(), preferences, pane}, [this] { ++quits; });
        menu->setChanged([this] { ++changes; });
        fake.runLoop.runUntilIdle();
        center.forgetPosts();
        menu->start();
        fake.runLoop.runUntilIdle();
    }
    void announce(const std::string& name, const std::string& hostName,
                  const std::string& state = "NotConnected")
    {
        fake.discovery.announce(
            std::vector{FakeDevice{name, hostName, {{"ConnState", Data::fromText(state)}}}});
        fake.runLoop.advance(Duration(0.5));
    }
    void hear(const char* name, DistributedNotificationCenter::TextUserInfo userInfo = {})
    {
        center.postFromAnotherProcess(name, std::move(userInfo));
        fake.runLoop.runUntilIdle();
    }
    void connectTo(const std::string& hostName)
    {
        hear(kServerConnectedToDevice,
             {{kDeviceNameKey, hostName}, {kDeviceAddressKey, "192.168.1.20"}});
    }
    void connectByAddress(const std::string& address)
    {
        hear(kServerConnectedToDevice,
             {{kDeviceNameKey, kOtherDeviceName}, {kDeviceAddressKey, address}});
    }
    void hearPairing(State state, const std::string& digits = "")
    {
        hear(kServerPairingDidChange,
             {{kPairingReportKey, textOfPairingReport({state, digits, "Pad"})}});
    }
    /// On, with "Pad" on the network.
    void startWithPad()
    {
        startWith(1);
        announce("Pad", "pad.local");
    }
    void startConnectedToPad()
    {
        startWithPad();
        connectTo("pad.local");
        center.forgetPosts();
    }
    void storeElsewhere(const char* key, PropertyList value)
    {
        fake.preferences.writeAsAnotherProcess(key, std::move(value), kApplicationID);
        hear(kFVEPrefsDidChangeNotification);
    }

    /// Each entry: "*" when it is marked, its title, "!" when it cannot be chosen.
    std::vector<std::string> entries() const
    {
        std::vector<std::string> result;
        for (const auto& item : menu->display().menu->items())
            result.push_back(isSeparator(*item) ? "-"
                                                : (item->state == 1 ? "*" : "") + item->title +
                                                      (item->canBeChosen() ? "" : "!"));
        return result;
    }
    std::shared_ptr<MenuItem> entry(const std::string& title) const
    {
        for (const auto& item : menu->display().menu->items()) {
            if (item->title == title)
                return item;
        }
        return nullptr;
    }
    bool click(const std::string& title)
    {
        const bool done = choose(entry(title));
        fake.runLoop.runUntilIdle();
        return done;
    }
    void hearFurther(const std::vector<FurtherDevice>& devices)
    {
        hear(kServerFurtherDevicesDidChange, {{kFurtherDevicesKey, textOfFurtherDevices(devices)}});
    }
    std::vector<std::string> further() const
    {
        std::vector<std::string> titles;
        for (const auto& item : entry("Also Use")->submenu->items())
            titles.push_back((item->state == 1 ? "*" : "") + item->title);
        return titles;
    }
    void clickFurther(int index)
    {
        EXPECT_TRUE(choose(entry("Also Use")->submenu->itemAtIndex(index)));
        fake.runLoop.runUntilIdle();
    }
    StatusIcon icon() const { return menu->display().icon; }

    FakePlatform fake;
    Platform::Scope scope{fake.platform()};
    FakeDistributedNotificationCenter& center = fake.distributedNotificationCenter;
    FVEPreferences preferences{fake.preferences, center};
    std::shared_ptr<FakeBundle> pane;
    int quits = 0;
    int changes = 0;
    std::shared_ptr<StatusMenu> menu;
};

TEST_F(StatusMenuTest, OffersToTurnOnAndNoDeviceWhileItIsOff)
{
    startWith(0);
    announce("Pad", "pad.local");
    EXPECT_EQ(icon(), StatusIcon::off);
    EXPECT_THAT(entries(),
                ElementsAre("Farview: Off!", "Turn Farview On", "-", "*No device selected!", "Pad!",
                            "-", "Open Farview Preferences…", "Quit"));
}

TEST_F(StatusMenuTest, OffersFreeDevicesWhileItIsOnAndNotThoseInUse)
{
    startWithPad();
    announce("Slab", "slab.local", "Connected");
    EXPECT_EQ(icon(), StatusIcon::on);
    EXPECT_THAT(entries(),
                ElementsAre("Farview: On!", "Turn Farview Off", "-", "*No device selected", "Pad",
                            "Slab!", "-", "Open Farview Preferences…", "Quit"));
}

TEST_F(StatusMenuTest, AsksForTheConnectionAtItsStart)
{
    startWith(1);
    EXPECT_EQ(center.countOf(kQueryRequestForConnectedHost), 1);
}

TEST_F(StatusMenuTest, MarksTheConnectedDevice)
{
    startConnectedToPad();
    EXPECT_EQ(icon(), StatusIcon::connected);
    EXPECT_EQ(menu->display().headline, "Connected to Pad");
    EXPECT_THAT(entries(), testing::Contains("*Pad"));
    EXPECT_THAT(entries(), testing::Contains("No device selected"));
    EXPECT_EQ(preferences.currentVirtualScreenDevice(), "pad.local");
    hear(kServerDisconnectedFromDevice);
    EXPECT_EQ(icon(), StatusIcon::on);
    EXPECT_THAT(entries(), testing::Contains("Pad"));
    EXPECT_THAT(entries(), testing::Contains("*No device selected"));
}

TEST_F(StatusMenuTest, SaysWhatBecameOfTheMonitorBelowTheHeadlineAndInTheToolTip)
{
    startConnectedToPad();
    const auto before = menu->display().sentence;
    ScreenReport report{.state = ScreenReport::State::shown, .width = 1920, .height = 1200};
    report.rate = 60;
    report.monitor = pixelRect(1280, 0, 1920, 1200);
    report.screens = {pixelRect(0, 0, 1280, 1024)};
    hear(kServerScreenDidChange, {{kScreenReportKey, textOfScreenReport(report)}});
    const std::string told = "1920 × 1200 at 60 Hz, to the right of your main display";
    EXPECT_EQ(menu->display().sentence, told);
    EXPECT_EQ(entries().at(0), "Connected to Pad!");
    EXPECT_EQ(entries().at(1), told + "!");
    hear(kServerScreenDidChange, {{kScreenReportKey, "missing 4"}});
    EXPECT_EQ(entries().at(1), "There is no picture while the screen of this computer is locked.!");
    hear(kServerDisconnectedFromDevice);
    EXPECT_EQ(menu->display().sentence, before);
    EXPECT_EQ(entries().at(1), "Turn Farview Off");
}

TEST_F(StatusMenuTest, SaysNothingOfAMonitorWhileNoDeviceIsConnected)
{
    startWithPad();
    hear(kServerScreenDidChange, {{kScreenReportKey, "none"}});
    EXPECT_EQ(entries().at(1), "Turn Farview Off");
}

TEST_F(StatusMenuTest, OffersFurtherDevicesInASubmenuBesideAConnectedOne)
{
    startWithPad();
    announce("Slab", "slab.local");
    EXPECT_EQ(entry("Also Use"), nullptr);
    connectTo("pad.local");
    ASSERT_NE(entry("Also Use"), nullptr);
    EXPECT_THAT(further(), ElementsAre("Slab"));
    clickFurther(0);
    const Post asked{kAlsoConnectToHost, "", {{kConnectToHostNameKey, "slab.local"}}, 3};
    EXPECT_THAT(center.postsNamed(kAlsoConnectToHost), ElementsAre(asked));
    hearFurther({{"slab.local", "Slab", FurtherDevice::State::connecting}});
    EXPECT_THAT(further(), ElementsAre("*Slab, Connecting…"));
    clickFurther(0);
    const Post left{kDisconnectFurtherDevice, "", {{kConnectToHostNameKey, "slab.local"}}, 3};
    EXPECT_THAT(center.postsNamed(kDisconnectFurtherDevice), ElementsAre(left));
    hearFurther({});
    storeElsewhere(kCurrentState, 0);
    EXPECT_EQ(entry("Also Use"), nullptr);
}

TEST_F(StatusMenuTest, SaysWhoIsTypingWhileThatIsSo)
{
    startConnectedToPad();
    const auto before = menu->display().sentence;
    ScreenReport report{.state = ScreenReport::State::shown, .width = 1920, .height = 1200};
    report.monitor = pixelRect(1280, 0, 1920, 1200);
    report.isTyping = true;
    hearFurther({{"slab.local", "Slab", FurtherDevice::State::connected, report}});
    EXPECT_EQ(entries().at(1), "Slab is typing!");
    hear(kServerScreenDidChange, {{kScreenReportKey, textOfScreenReport(report)}});
    EXPECT_EQ(entries().at(2), "Pad is typing!");
    EXPECT_EQ(entries().at(3), "Slab is typing!");
    EXPECT_EQ(menu->display().sentence, "Pad is typing\nSlab is typing");
    hear(kServerDisconnectedFromDevice);
    hearFurther({});
    EXPECT_EQ(entries().at(1), "Turn Farview Off");
    EXPECT_EQ(menu->display().sentence, before);
}

TEST_F(StatusMenuTest, BeginsWithTheQuestionAndItsAnswersWhileDigitsAreCompared)
{
    startWithPad();
    hearPairing(State::comparing, "482913");
    EXPECT_EQ(icon(), StatusIcon::question);
    EXPECT_EQ(menu->display().headline, "Does Pad show 482\u00A0913?");
    EXPECT_EQ(menu->display().sentence, pairingTexts(State::comparing).remedy);
    EXPECT_THAT(entries(), ElementsAre("Does Pad show 482\u00A0913?!", "Yes, These Digits", "No",
                                       "-", "Turn Farview Off", "-", "*No device selected", "Pad",
                                       "-", "Open Farview Preferences…", "Quit"));
    hearPairing(State::confirmed, "482913");
    EXPECT_EQ(entries().at(0), "Now confirm it at Pad, too.!");
    EXPECT_EQ(entries().at(1), "Cancel");
    hear(kServerPairingDidChange, {{kPairingReportKey, "none "}});
    connectTo("pad.local");
    EXPECT_EQ(icon(), StatusIcon::connected);
    EXPECT_EQ(entries().at(0), "Connected to Pad!");
}

TEST_F(StatusMenuTest, AnAnswerNamesTheDigitsThatItWasGivenTo)
{
    startWithPad();
    hearPairing(State::comparing, "482913");
    EXPECT_TRUE(click("Yes, These Digits"));
    EXPECT_EQ(center.postsNamed(kConfirmDevice),
              (std::vector<Post>{{kConfirmDevice, "", {{kDigitsKey, "482913"}}, 3}}));
    EXPECT_TRUE(click("No"));
    EXPECT_EQ(center.postsNamed(kRefuseDevice),
              (std::vector<Post>{{kRefuseDevice, "", {{kDigitsKey, "482913"}}, 3}}));
}

TEST_F(StatusMenuTest, AnAnswerInAMenuThatIsStillOpenIsNoneToOtherDigits)
{
    startWithPad();
    hearPairing(State::comparing, "482913");
    const auto yes = entry("Yes, These Digits");
    const auto no = entry("No");
    for (const auto* later : {"482914", ""}) {
        hearPairing(*later ? State::comparing : State::none, later);
        choose(yes);
        choose(no);
    }
    EXPECT_EQ(center.countOf(kConfirmDevice), 0);
    EXPECT_EQ(center.countOf(kRefuseDevice), 0);
}

TEST_F(StatusMenuTest, SaysWhyADeviceIsNotTrustedAndLeadsToWhatCanBeDone)
{
    startWithPad();
    hear(kRequestingErrorMsgFromPrefPane);
    hearPairing(State::refusedThere);
    const std::string refused = "Somebody said no at Pad. No picture was sent.";
    EXPECT_EQ(menu->display().sentence, refused);
    EXPECT_EQ(entries().at(1), refused + "!");
    EXPECT_EQ(entries().at(2), "Turn Farview Off");
    EXPECT_EQ(icon(), StatusIcon::trouble);
}

TEST_F(StatusMenuTest, SaysThatADeviceIsAnotherOneAndLeadsToThePanel)
{
    startWithPad();
    hearPairing(State::changed);
    EXPECT_EQ(icon(), StatusIcon::trouble) << "though nobody asked for a connection";
    EXPECT_EQ(entries().at(1), "This is not the Pad that you confirmed. No picture was sent.!");
    EXPECT_EQ(entries().at(2), "What to Do…");
    EXPECT_TRUE(click("What to Do…"));
    ASSERT_EQ(fake.workspace.opened().size(), 1u);
    EXPECT_EQ(fake.workspace.opened()[0].path(), pane->bundlePath());
}

TEST_F(StatusMenuTest, AsksNoLongerWhenTheServerIsAnotherOneOrOff)
{
    const std::vector<std::function<void()>> ends = {
        [this] {
            hear(kServerDisconnectedFromDevice, {{kAwaitsRequestKey, "YES"}});
        },
        [this] {
            center.disconnect();
            center.reconnect();
            fake.runLoop.runUntilIdle();
        },
        [this] { storeElsewhere(kCurrentState, std::int64_t{0}); }};
    startWithPad();
    for (const auto& end : ends) {
        hearPairing(State::comparing, "482913");
        EXPECT_EQ(icon(), StatusIcon::question);
        end();
        EXPECT_EQ(entry("Yes, These Digits"), nullptr);
    }
}

TEST_F(StatusMenuTest, AConnectedDeviceThatIsFoundLaterIsMarkedThen)
{
    startWith(1);
    hear(kQueryResultForConnectedHost,
         {{kDeviceNameKey, "pad.local"}, {kDeviceAddressKey, "192.168.1.20"}});
    EXPECT_EQ(menu->display().headline, "Connected to pad.local");
    EXPECT_THAT(entries(), testing::Contains("*pad.local (in background)!"));
    announce("Pad", "pad.local");
    EXPECT_EQ(menu->display().headline, "Connected to Pad");
    EXPECT_THAT(entries(), testing::Contains("*Pad"));
    fake.discovery.remove({"Pad"});
    fake.runLoop.advance(Duration(0.5));
    EXPECT_THAT(entries(), testing::Contains("*Pad (in background)!"));
}

TEST_F(StatusMenuTest, ShowsAConnectionByAddress)
{
    startWith(1);
    connectByAddress("192.168.1.77");
    EXPECT_EQ(menu->display().headline, "Connected to 192.168.1.77");
    EXPECT_THAT(entries(), testing::Contains("*192.168.1.77"));
    center.forgetPosts();
    EXPECT_TRUE(click("192.168.1.77"));
    EXPECT_THAT(center.posts(), IsEmpty()) << "it is connected already";
}

TEST_F(StatusMenuTest, ChoosingADeviceAsksTheServerForIt)
{
    startWithPad();
    center.forgetPosts();
    EXPECT_TRUE(click("Pad"));
    EXPECT_EQ(
        center.posts(),
        (std::vector<Post>{{kConnectServerToHost, "", {{kConnectToHostNameKey, "pad.local"}}, 3}}));
}

TEST_F(StatusMenuTest, ChoosingTheConnectedDeviceAsksForNothing)
{
    startConnectedToPad();
    EXPECT_TRUE(click("Pad"));
    EXPECT_THAT(center.posts(), IsEmpty());
}

TEST_F(StatusMenuTest, AnEntryFromBeforeIsAskedAgainWhetherItMayBeChosen)
{
    startWithPad();
    const auto before = entry("Pad");
    menu->quit();
    center.forgetPosts();
    EXPECT_FALSE(choose(before));
    EXPECT_THAT(center.posts(), IsEmpty());
}

TEST_F(StatusMenuTest, ChoosingNoDeviceEndsTheConnection)
{
    startConnectedToPad();
    EXPECT_TRUE(click("No device selected"));
    EXPECT_EQ(center.countOf(kDisconnectCurrentServerFromHost), 1);
    EXPECT_EQ(preferences.currentVirtualScreenDevice(), "");
    EXPECT_EQ(icon(), StatusIcon::on);
}

TEST_F(StatusMenuTest, AServerThatBeginsIsAskedOnceMoreForWhatWasChosenLast)
{
    const auto serverBegins = [this] {
        hear(kServerDisconnectedFromDevice, {{kAwaitsRequestKey, "YES"}});
    };
    startWithPad();
    EXPECT_TRUE(click("Pad"));
    serverBegins();
    serverBegins();
    EXPECT_EQ(center.countOf(kConnectServerToHost), 2);
    EXPECT_TRUE(click("Pad"));
    hear(kConnectServerToTicket, {{kConnectUsingTicketKey, "10.0.0.5"}});
    serverBegins();
    EXPECT_EQ(center.countOf(kConnectServerToHost), 3)
        << "another program asked for something else";
    EXPECT_TRUE(click("Pad"));
    storeElsewhere(kCurrentState, std::int64_t{0});
    serverBegins();
    EXPECT_EQ(center.countOf(kConnectServerToHost), 4) << "switched off elsewhere";
}

TEST_F(StatusMenuTest, NoDeviceCannotBeChosenWhereAutoConnectionWouldUndoIt)
{
    startConnectedToPad();
    preferences.setAutoConnectDevices({PropertyList("Pad")});
    fake.runLoop.runUntilIdle();
    EXPECT_THAT(entries(), testing::Contains("No device selected!"));
    preferences.setAutoConnectOption(false);
    fake.runLoop.runUntilIdle();
    EXPECT_THAT(entries(), testing::Contains("No device selected"));
}

TEST_F(StatusMenuTest, TurningOnStoresItAndStartsTheServer)
{
    startWith(0);
    EXPECT_TRUE(click("Turn Farview On"));
    EXPECT_EQ(preferences.currentState(), 1);
    ASSERT_EQ(fake.workspace.launches().size(), 1u);
    EXPECT_EQ(fake.workspace.launches()[0].path, *pane->pathForResource("ScreenCapture", "app"));
    EXPECT_EQ(fake.workspace.launches()[0].options, 0x10300u);
    EXPECT_EQ(icon(), StatusIcon::on);
}

TEST_F(StatusMenuTest, TurningOffStoresItAndEndsTheServer)
{
    startWith(1);
    connectTo("pad.local");
    center.forgetPosts();
    EXPECT_TRUE(click("Turn Farview Off"));
    EXPECT_EQ(preferences.currentState(), 0);
    EXPECT_EQ(center.postsNamed(kTerminateScreenServer),
              (std::vector<Post>{{kTerminateScreenServer, "", {}, 3}}));
    EXPECT_EQ(icon(), StatusIcon::off);
    EXPECT_EQ(quits, 0);
}

TEST_F(StatusMenuTest, FollowsTheSettingsThatOthersChange)
{
    startWith(0);
    storeElsewhere(kCurrentState, std::int64_t{1});
    EXPECT_EQ(icon(), StatusIcon::on);
    EXPECT_THAT(fake.workspace.launches(), IsEmpty()) << "who changed it starts the server";
    storeElsewhere(kCurrentState, std::int64_t{2});
    EXPECT_EQ(icon(), StatusIcon::trouble);
    EXPECT_THAT(entries(), testing::Contains("Turn Farview Off"));
}

TEST_F(StatusMenuTest, AFailedConnectionIsTroubleUntilTheNextAttempt)
{
    startWith(1);
    hear(kRequestingErrorMsgFromPrefPane);
    EXPECT_EQ(icon(), StatusIcon::trouble);
    hear(kServerDisconnectedFromDevice);
    EXPECT_EQ(icon(), StatusIcon::trouble) << "the server's answer to anybody's question";
    hear(kConnectServerToHost, {{kConnectToHostNameKey, "pad.local"}});
    EXPECT_EQ(icon(), StatusIcon::on);
}

TEST_F(StatusMenuTest, WithoutTheDriverItSaysSoAndOffersThePanelAlone)
{
    FakePlatform bare;
    Platform::Scope inner(bare.platform());
    FVEPreferences settings(bare.preferences, bare.distributedNotificationCenter);
    settings.setCurrentState(1);
    menu =
        std::make_shared<StatusMenu>(StatusMenu::Services{bare.platform(), settings, pane}, [] {});
    menu->start();
    EXPECT_EQ(icon(), StatusIcon::trouble);
    EXPECT_EQ(menu->display().sentence, "Driver not installed.");
    EXPECT_THAT(entries(), ElementsAre("Farview: Error!", "-", "*No device selected!", "-",
                                       "Open Farview Preferences…", "Quit"));
    menu.reset();
}

TEST_F(StatusMenuTest, OpensThePanel)
{
    startWith(1);
    EXPECT_TRUE(click("Open Farview Preferences…"));
    ASSERT_EQ(fake.workspace.opened().size(), 1u);
    EXPECT_EQ(fake.workspace.opened()[0].path(), pane->bundlePath());
}

TEST_F(StatusMenuTest, QuitTakesTheItemOutOfTheSettingsAndTouchesNothingElse)
{
    startWith(1);
    center.forgetPosts();
    EXPECT_TRUE(click("Quit"));
    EXPECT_EQ(quits, 1);
    EXPECT_FALSE(preferences.showInMenuBar());
    EXPECT_EQ(preferences.currentState(), 1);
    for (const auto& post : center.posts())
        EXPECT_THAT(post.name, testing::AnyOf(kFVEPrefsWillChangeNotification,
                                              kFVEPrefsDidChangeNotification));
}

TEST_F(StatusMenuTest, TheTerminateNotificationEndsItAndLeavesTheSettings)
{
    startWith(1);
    hear(kTerminateMenuExtra);
    hear(kTerminateMenuExtra);
    EXPECT_EQ(quits, 1);
    EXPECT_TRUE(preferences.showInMenuBar());
    const int before = changes;
    announce("Pad", "pad.local");
    connectTo("pad.local");
    EXPECT_EQ(changes, before) << "nothing is followed any more";
}

TEST_F(StatusMenuTest, EndsWhenTheSettingsTakeItAway)
{
    startWith(1);
    storeElsewhere(kShowInMenuBar, false);
    EXPECT_EQ(quits, 1);
}

TEST_F(StatusMenuTest, StartedByHandItStaysWhateverTheSettingsSayOfTheMenuBar)
{
    preferences.setShowInMenuBar(false);
    startWith(1);
    storeElsewhere(kCurrentState, std::int64_t{0});
    EXPECT_EQ(quits, 0);
}

TEST_F(StatusMenuTest, AfterALossOfTheBusItReadsAndAsksAnew)
{
    startWith(1);
    center.disconnect();
    fake.preferences.writeAsAnotherProcess(kCurrentState, std::int64_t{0}, kApplicationID);
    center.forgetPosts();
    center.reconnect();
    fake.runLoop.runUntilIdle();
    EXPECT_EQ(icon(), StatusIcon::off);
    EXPECT_EQ(center.countOf(kQueryRequestForConnectedHost), 1);
}

TEST_F(StatusMenuTest, ReportsWithoutANameOrWithOneThatIsTooLongAreIgnored)
{
    startWith(1);
    hear(kServerConnectedToDevice);
    hear(kServerConnectedToDevice, {{kDeviceNameKey, ""}});
    hear(kServerConnectedToDevice, {{kDeviceNameKey, std::string(100000, 'x')}});
    EXPECT_EQ(icon(), StatusIcon::on);
}

TEST_F(StatusMenuTest, TheTextsAreInTheUsersLanguage)
{
    pane->setText("Turn Farview Off", "Farview ausschalten");
    pane->setText("Connected to %@", "Verbunden mit %@");
    startWith(1);
    connectTo("%@%@.local");
    EXPECT_EQ(menu->display().headline, "Verbunden mit %@%@.local");
    EXPECT_THAT(entries(), testing::Contains("Farview ausschalten"));
}

TEST_F(StatusMenuTest, NothingHappensWhenNothingHappens)
{
    startConnectedToPad();
    const int before = changes;
    center.forgetPosts();
    fake.runLoop.advance(Duration(3600));
    EXPECT_EQ(changes, before);
    EXPECT_THAT(center.posts(), IsEmpty());
}

} // namespace
