#include "Common/Rules/FurtherDevices.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

std::vector<FurtherDevice> readDevices(const std::string& text) { return furtherDevices(&text); }

const std::vector<FurtherDevice> oneOfEach{{"slab.local", "Slab", FurtherDevice::State::connecting},
                                           {"desk.local",
                                            "My Desk #2",
                                            FurtherDevice::State::connected,
                                            {.state = ScreenReport::State::shown,
                                             .width = 1920,
                                             .height = 1200,
                                             .isTyping = true,
                                             .monitor = pixelRect(10, 20, 1920, 1200)},
                                            std::string(64, 'a')},
                                           {"10.0.0.7", "10.0.0.7", FurtherDevice::State::failed}};

TEST(FurtherDevices, ComeBackAsTheyWereTold)
{
    EXPECT_EQ(readDevices(textOfFurtherDevices(oneOfEach)), oneOfEach);
    EXPECT_TRUE(readDevices(textOfFurtherDevices({})).empty());
    EXPECT_TRUE(furtherDevices(nullptr).empty());
}

TEST(FurtherDevices, AreAtMostSoMany)
{
    const std::vector<FurtherDevice> many(100, oneOfEach.front());
    EXPECT_EQ(readDevices(textOfFurtherDevices(many)).size(), mostFurtherDevices);
    EXPECT_TRUE(readDevices(std::string(20'000, '\n') + textOfFurtherDevices(oneOfEach)).empty());
}

TEST(FurtherDevices, WhatCannotBeReadIsLeftOutAndNothingElse)
{
    const std::string sound = textOfFurtherDevices({oneOfEach.front()});
    for (const std::string& line :
         {std::string("connected"), std::string("connected\tdesk.local"),
          std::string("connected\t\tDesk"), std::string("connected\tdesk.local\t"),
          std::string("other\tdesk.local\tDesk"), std::string("failed\tdesk\x1b[2J.local\tDesk"),
          std::string("failed\tdesk.local\tDe\x7Fsk"),
          "failed\tdesk.local\t" + std::string(256, 'x'),
          "failed\tdesk.local\tDesk\tnone\t" + std::string(256, 'a')})
        EXPECT_EQ(readDevices(line + "\n" + sound), std::vector{oneOfEach.front()}) << line;
    EXPECT_EQ(
        readDevices("connected\tdesk.local\tDesk\tnonsense\n"),
        (std::vector<FurtherDevice>{{"desk.local", "Desk", FurtherDevice::State::connected}}));
}

} // namespace
} // namespace farview
