#include "Common/Rules/FurtherDeviceRows.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using DeviceIs = FurtherDevice::State;
using DeviceRows = std::vector<FurtherDeviceRow>;

std::string untranslated(const std::string& text) { return text; }

ScreenReport shownScreen(bool isTyping = false)
{
    return {.state = ScreenReport::State::shown,
            .width = 1920,
            .height = 1200,
            .rate = 60,
            .isTyping = isTyping};
}

FurtherDeviceInputs connectedToPad()
{
    return {.inSight = {{"pad.local", "Pad", true}, {"slab.local", "Slab"}, {"desk.local", "Desk"}},
            .firstHostName = "pad.local"};
}

DeviceRows furtherRows(const FurtherDeviceInputs& inputs)
{
    return furtherDeviceRows(inputs, untranslated);
}

TEST(FurtherDeviceRows, AreTheFreeDevicesInSightButForTheFirst)
{
    auto inputs = connectedToPad();
    EXPECT_EQ(furtherRows(inputs), (DeviceRows{{"slab.local", "Slab"}, {"desk.local", "Desk"}}));
    inputs.inSight[1].busy = true;
    inputs.inSight[0].busy = false; // its announcement comes later than its connection
    EXPECT_EQ(furtherRows(inputs), (DeviceRows{{"desk.local", "Desk"}}));
}

TEST(FurtherDeviceRows, AreNotThereWhileNoDeviceIsChosenUnlessTheyAreUsed)
{
    auto inputs = connectedToPad();
    inputs.firstHostName.reset();
    EXPECT_TRUE(furtherRows(inputs).empty());
    inputs.used = {{"slab.local", "Slab", DeviceIs::connecting}};
    EXPECT_EQ(furtherRows(inputs), (DeviceRows{{"slab.local", "Slab", true, "Connecting…"}}));
}

TEST(FurtherDeviceRows, BesideADeviceByAddressEveryFreeOneIsOffered)
{
    auto inputs = connectedToPad();
    inputs.firstHostName = "";
    EXPECT_EQ(furtherRows(inputs).size(), 2u);
}

TEST(FurtherDeviceRows, StayInTheirPlaceWhenTheyAreUsedAndThoseOutOfSightComeLast)
{
    auto inputs = connectedToPad();
    inputs.inSight[2].busy = true; // with us
    inputs.used = {{"sofa.local", "Sofa", DeviceIs::connecting},
                   {"desk.local", "Desk", DeviceIs::connecting}};
    EXPECT_EQ(furtherRows(inputs), (DeviceRows{{"slab.local", "Slab"},
                                               {"desk.local", "Desk", true, "Connecting…"},
                                               {"sofa.local", "Sofa", true, "Connecting…"}}));
}

TEST(FurtherDeviceRows, TellWhatBecameOfTheDevice)
{
    const ScreenReport locked{.state = ScreenReport::State::missing,
                              .obstacle = ScreenObstacle::locked};
    const ScreenReport coming{.state = ScreenReport::State::coming};
    const ScreenReport asking{.state = ScreenReport::State::asking};
    const struct {
        FurtherDevice device;
        FurtherDeviceRow row;
    } cases[] = {
        {{"a", "A", DeviceIs::connecting, {}, "key"}, {"a", "A", true, "Connecting…"}},
        {{"a", "A", DeviceIs::failed, {}, "key"}, {"a", "A", false, "Not reached"}},
        {{"a", "A", DeviceIs::connected, coming, "key"},
         {"a", "A", true, "Connecting…", "", "key"}},
        {{"a", "A", DeviceIs::connected, asking, "key"},
         {"a", "A", true, "Connecting…", "", "key"}},
        {{"a", "A", DeviceIs::connected, shownScreen(), "key"},
         {"a", "A", true, "1920 × 1200", "", "key"}},
        {{"a", "A", DeviceIs::connected, {}, "key"}, {"a", "A", true, "No picture", "", "key"}},
        {{"a", "A", DeviceIs::connected, locked, "key"},
         {"a", "A", true, "No picture",
          "There is no picture while the screen of this computer is locked.", "key"}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(furtherRows({.used = {each.device}}), DeviceRows{each.row}) << each.row.state;
}

TEST(TypingLines, NameWhoTypesAndNobodyElse)
{
    const FurtherDevice slab{"slab.local", "Slab", DeviceIs::connected, shownScreen(true)};
    const FurtherDevice desk{"desk.local", "Desk", DeviceIs::connected, shownScreen()};
    const auto text = [](const auto& name, const auto& screen, const auto& used) {
        return joinedLines(typingLines(name, screen, used, untranslated));
    };
    using Report = std::optional<ScreenReport>;
    using Used = std::vector<FurtherDevice>;
    EXPECT_EQ(text("Pad", Report(), Used{}), "");
    EXPECT_EQ(text("Pad", Report(shownScreen()), Used{desk}), "");
    EXPECT_EQ(text("Pad", Report(shownScreen(true)), Used{desk}), "Pad is typing");
    EXPECT_EQ(text("Pad", Report(shownScreen(true)), Used{desk, slab}),
              "Pad is typing\nSlab is typing");
    EXPECT_EQ(text("", Report(), Used{slab}), "Slab is typing");
}

} // namespace
} // namespace farview
