#include "Platform/Desktop/Screens/X11/MonitorJournal.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

const MonitorJournal journal{4711, 79, 62, 78, {1920, 1080}, {508, 285}};

TEST(MonitorJournal, SaysWhatWasWritten) { EXPECT_EQ(journalOf(journalNumbers(journal)), journal); }

TEST(MonitorJournal, WhatCannotBeOneIsNone)
{
    const auto whole = journalNumbers(journal);
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_EQ(journalOf(std::span(whole).first(length)), std::nullopt) << length;
    auto longer = whole;
    longer.push_back(1);
    EXPECT_EQ(journalOf(longer), std::nullopt);
    for (const std::size_t place : {0, 4, 5, 6, 7}) {
        auto zero = whole;
        zero[place] = 0;
        EXPECT_EQ(journalOf(zero), std::nullopt) << place;
    }
    for (const std::size_t place : {4, 5, 6, 7}) {
        auto large = whole;
        large[place] = 32768;
        EXPECT_EQ(journalOf(large), std::nullopt) << place;
    }
}

TEST(MonitorJournal, NamesOfModesTellMakersApart)
{
    EXPECT_EQ(namePrefix(12), "FVE-12-");
    EXPECT_FALSE((namePrefix(123) + "800x600").starts_with(namePrefix(12)));
}

} // namespace
} // namespace farview
