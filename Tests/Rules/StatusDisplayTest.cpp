#include "Common/Rules/StatusDisplay.h"

#include <gtest/gtest.h>

#include <limits>

using namespace farview;

namespace
{

constexpr const char* offSentence =
    "Farview is currently turned off. Turn it on to choose a device as a virtual screen.";
constexpr const char* onSentence =
    "Farview is currently on. Choose a device below to be a virtual screen.";
constexpr const char* errorSentence =
    "Farview is currently unable to perform as a screen extender. An unknown error has occurred.";
constexpr const char* instructions =
    "When you select a device, the screen will go blue as the system adds a new screen.";

StatusInputs inputs(long state, bool anyDevice = false, bool byAddress = false)
{
    StatusInputs result;
    result.driverInstalled = true;
    result.currentState = state;
    result.anyDeviceListed = anyDevice;
    result.connectedByAddress = byAddress;
    return result;
}

StatusDisplay display(const char* word, const char* sentence, PopUpDisplay popUp)
{
    return {word, sentence, popUp, instructions, false};
}

TEST(StatusDisplay, FollowsTheStateAndWhatIsInSight)
{
    struct Row {
        long state;
        const char* word;
        const char* sentence;
        PopUpDisplay nothingInSight;
        PopUpDisplay somethingInSight;
    };
    const auto off = PopUpDisplay::disabledOffTitle;
    const auto menu = PopUpDisplay::menu;
    const auto selection = PopUpDisplay::menuAndSelection;
    const long least = std::numeric_limits<long>::min();
    for (const Row& row :
         {Row{0, "Off", offSentence, off, off}, Row{1, "On", onSentence, menu, selection},
          Row{2, "Error", errorSentence, menu, selection}, Row{3, "", "", menu, selection},
          Row{-1, "", "", menu, selection}, Row{least, "", "", menu, selection}}) {
        const auto nothing = display(row.word, row.sentence, row.nothingInSight);
        const auto something = display(row.word, row.sentence, row.somethingInSight);
        EXPECT_EQ(statusDisplay(inputs(row.state)), nothing) << row.state;
        EXPECT_EQ(statusDisplay(inputs(row.state, true)), something) << row.state;
        EXPECT_EQ(statusDisplay(inputs(row.state, false, true)), something) << row.state;
        EXPECT_EQ(statusDisplay(inputs(row.state, true, true)), something) << row.state;
    }
}

TEST(StatusDisplay, AnErrorOnShowKeepsInstructionsAndWarning)
{
    for (const long state : {0L, 1L, 2L, 9L}) {
        auto withError = inputs(state, true);
        const auto without = statusDisplay(withError);
        withError.errorOnShow = true;
        const auto with = statusDisplay(withError);
        EXPECT_EQ(with.instructions, std::nullopt) << state;
        EXPECT_EQ(with.warningShown, std::nullopt) << state;
        EXPECT_EQ(with.word, without.word) << state;
        EXPECT_EQ(with.sentence, without.sentence) << state;
        EXPECT_EQ(with.popUp, without.popUp) << state;
    }
}

TEST(StatusDisplay, AMissingDriverOutweighsEverythingElse)
{
    const StatusDisplay expected{"Error", "Driver not installed.", PopUpDisplay::disabled,
                                 "Driver not installed.  Please run the installer and restart your "
                                 "machine when requested to do so.",
                                 true};
    for (const long state : {0L, 1L, 2L, 9L}) {
        auto missing = inputs(state, true, true);
        missing.driverInstalled = false;
        EXPECT_EQ(statusDisplay(missing), expected) << state;
        missing.errorOnShow = true;
        EXPECT_EQ(statusDisplay(missing), expected) << state;
    }
}

TEST(StatusDisplay, TheGraphicsCardCaseHasALongerTextInThreeParagraphs)
{
    StatusInputs missing;
    missing.graphicsCardCase = true;
    const auto text = statusDisplay(missing).instructions.value_or("");
    EXPECT_TRUE(text.starts_with(
        "Driver not installed.\n\nIn Lion, the NVIDIA GeForce video driver on this computer is not "
        "compatible with Farview. The Farview drivers are installed but will be disabled until the "
        "video driver is fixed.\n\nPlease visit "));
    EXPECT_TRUE(text.ends_with("\n\nPlease visit %@ for more information."))
        << "the build says which page that is";
}

TEST(StatusDisplay, TheGraphicsCardCaseIsNothingWhileTheDriverIsThere)
{
    auto there = inputs(1);
    there.graphicsCardCase = true;
    EXPECT_EQ(statusDisplay(there), statusDisplay(inputs(1)));
}

TEST(StatusDisplay, TheErrorTextKeepsItsDoubleBlanks)
{
    EXPECT_STREQ(connectionErrorText,
                 "There was a problem connecting to a device.  Farview could not talk to the "
                 "screen device.  Disable the Firewall in System Preferences->Security and try "
                 "again.  Please contact technical support for more information.");
}

TEST(SwitchState, FollowsTheStoredStateAndKeepsStillForAnythingElse)
{
    EXPECT_EQ(switchStateForCurrentState(0), 0);
    EXPECT_EQ(switchStateForCurrentState(1), 1);
    EXPECT_EQ(switchStateForCurrentState(2), 1);
    EXPECT_EQ(switchStateForCurrentState(3), std::nullopt);
    EXPECT_EQ(switchStateForCurrentState(-1), std::nullopt);
}

TEST(DiscoveryHint, IsEmptyUnlessItHelps)
{
    EXPECT_EQ(discoveryHint({false, false, false, DiscoveryCondition::unavailable}), "");
    EXPECT_EQ(discoveryHint({true, true, false, DiscoveryCondition::refused}), "");
    EXPECT_EQ(discoveryHint({true, false, true, DiscoveryCondition::working}), "");
}

TEST(DiscoveryHint, TellsHowToGetADeviceWhileSearchingCanSucceed)
{
    const std::string text = "No device yet? Start farview-device on another computer.";
    EXPECT_EQ(discoveryHint({true, false, false, DiscoveryCondition::working}), text);
    EXPECT_EQ(discoveryHint({true, false, false, DiscoveryCondition::starting}),
              "Looking for devices…");
}

TEST(DiscoveryHint, SpeaksOfFirewallsOnceNothingWasFoundForLong)
{
    const auto text = discoveryHint({true, false, false, DiscoveryCondition::working, true});
    EXPECT_TRUE(text.starts_with("No device yet? Start farview-device on another computer."));
    EXPECT_NE(text.find("UDP port 5353"), std::string::npos) << text;
    EXPECT_EQ(discoveryHint({true, true, false, DiscoveryCondition::working, true}), "");
    // What is known to be wrong comes before what may be.
    for (const auto condition : {DiscoveryCondition::refused, DiscoveryCondition::unavailable})
        EXPECT_EQ(discoveryHint({true, false, false, condition, true}),
                  discoveryHint({true, false, false, condition, false}));
}

TEST(DiscoveryHint, TellsWhatIsWrongAndWhatToDoWhenSearchingCannotSucceed)
{
    const auto refused = discoveryHint({true, false, false, DiscoveryCondition::refused});
    EXPECT_NE(refused.find("avahi-daemon"), std::string::npos) << refused;
    const auto unavailable = discoveryHint({true, false, false, DiscoveryCondition::unavailable});
    EXPECT_NE(unavailable.find("network"), std::string::npos) << unavailable;
}

} // namespace
