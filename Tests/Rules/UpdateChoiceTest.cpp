#include "Common/Rules/UpdateChoice.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using Kind = UpdateChoice::Kind;

UpdateItem item(const char* version, const char* minimum = "")
{
    UpdateItem item;
    item.version = version;
    item.minimumSystemVersion = minimum;
    return item;
}

TEST(UpdateChoice, IsTheNewestThatSuits)
{
    struct Row {
        std::vector<UpdateItem> items;
        Kind kind;
        const char* offered;
        const char* found;
    };
    const Row rows[] = {
        {{}, Kind::current, "1.0", ""},
        {{item("1.0")}, Kind::current, "1.0", ""},
        {{item("0.9")}, Kind::current, "0.9", ""},
        {{item("1.0.0")}, Kind::current, "1.0.0", ""},
        {{item("1.1")}, Kind::found, "1.1", "1.1"},
        {{item("1.1"), item("1.10"), item("1.9")}, Kind::found, "1.10", "1.10"},
        {{item("1.1"), item("2.0", "11")}, Kind::found, "2.0", "1.1"},
        {{item("2.0", "10.9.0")}, Kind::found, "2.0", "2.0"},
        {{item("2.0", "10.9.1")}, Kind::systemTooOld, "2.0", ""},
        {{item("2.0", "11"), item("1.0")}, Kind::systemTooOld, "2.0", ""},
        {{item("0.5", "11")}, Kind::current, "0.5", ""},
    };
    for (const auto& row : rows) {
        const auto choice = chooseUpdate(row.items, "1.0", "10.9.0");
        EXPECT_EQ(choice.kind, row.kind) << row.offered;
        EXPECT_EQ(choice.offered, row.offered);
        EXPECT_EQ(choice.item ? choice.item->version : "", row.found);
    }
}

TEST(UpdateChoice, OfTwoItemsWithOneVersionTheFirstCounts)
{
    auto first = item("1.1");
    first.address = "first";
    auto second = item("1.1.0");
    second.address = "second";
    EXPECT_EQ(chooseUpdate({first, second}, "1.0", "10").item->address, "first");
}

TEST(UpdateChoice, AFeedCountsFromItsSigningUntilItExpiresAndNeverAfterANewerOne)
{
    constexpr double day = 24 * 60 * 60;
    const FeedDates feed{{100 * day}, {190 * day}};
    struct Row {
        double now;
        Date newest;
        std::optional<UpdateProblem> problem;
    };
    const Row rows[] = {
        {100 * day, Date(), std::nullopt},
        {190 * day, Date(), std::nullopt},
        {190 * day + 1, Date(), UpdateProblem::feedExpired},
        {99 * day, Date(), std::nullopt},
        {99 * day - 1, Date(), UpdateProblem::clock},
        {0, Date(), UpdateProblem::clock},
        {120 * day, Date{99 * day}, std::nullopt},
        {120 * day, Date{100 * day}, std::nullopt},
        {120 * day, Date{100 * day + 1}, UpdateProblem::feedReplayed},
        {300 * day, Date{100 * day + 1}, UpdateProblem::feedReplayed},
        {99 * day - 1, Date{100 * day}, UpdateProblem::clock},
    };
    for (const auto& row : rows)
        EXPECT_EQ(problemOf(feed, row.newest, Date{row.now}), row.problem) << row.now / day;
}

} // namespace
} // namespace farview
