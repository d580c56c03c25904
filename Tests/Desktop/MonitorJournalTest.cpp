#include "Platform/Desktop/Screens/X11/MonitorJournal.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

const MonitorJournal first{1, 4711, 79, 62, 78, {1920, 1080}, {508, 285}};
const MonitorJournal third{3, 4711, 80, 0, 78, {1920, 1080}, {508, 285}};

TEST(MonitorJournal, SaysWhatWasWrittenOfEachMonitor)
{
    for (const auto& journals :
         {std::vector<MonitorJournal>{}, std::vector{first}, std::vector{third, first}})
        EXPECT_EQ(journalsOf(journalNumbers(journals)), journals) << journals.size();
}

TEST(MonitorJournal, WhatCannotBeOneIsNone)
{
    const auto whole = journalNumbers(std::vector{first, third});
    constexpr std::size_t one = 9;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::size_t expected = length == one ? 1 : 0;
        EXPECT_EQ(journalsOf(std::span(whole).first(length)).size(), expected) << length;
    }
    const auto isRefused = [&](std::size_t place, std::uint32_t number) {
        auto changed = whole;
        changed[one + place] = number;
        return journalsOf(changed).empty();
    };
    for (const std::size_t place : {0, 1, 5, 6, 7, 8})
        EXPECT_TRUE(isRefused(place, 0)) << place;
    for (const std::size_t place : {5, 6, 7, 8})
        EXPECT_TRUE(isRefused(place, 32768)) << place;
    EXPECT_TRUE(isRefused(0, mostMonitors + 1));
    EXPECT_TRUE(isRefused(0, first.slot)) << "the same monitor twice";
    EXPECT_FALSE(isRefused(0, mostMonitors));
}

TEST(MonitorJournal, NamesTellMakersAndTheirMonitorsApart)
{
    EXPECT_EQ(namePrefix(first), "FVE-4711-1-");
    EXPECT_EQ(nameOf(third), "FVE-4711-3-monitor");
}

TEST(MonitorJournal, AScreenIsAsDenseAsItWasOnTheWayThereAndBack)
{
    for (int width = 1921; width < 6000; ++width) {
        MonitorJournal larger = first;
        larger.size = {width, 1400};
        larger.millimetres = millimetresOf(larger.size, first);
        ASSERT_EQ(millimetresOf(first.size, larger), first.millimetres) << width;
    }
}

} // namespace
} // namespace farview
