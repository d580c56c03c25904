#include "Common/Rules/RowOrder.h"

#include <gtest/gtest.h>

#include <limits>

using farview::DeviceRow;
using farview::dropAllowed;
using farview::IndexSet;
using farview::movedRow;
using farview::PropertyList;

namespace
{

using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;

/// Where rows named by their letters stand after a move; "" when it is refused.
std::string moved(const std::string& letters, std::int64_t from, std::int64_t to)
{
    std::vector<DeviceRow> rows;
    for (const char letter : letters)
        rows.push_back({true, std::string(1, letter), {}});
    std::string result;
    for (const auto& row : movedRow(rows, from, to).value_or(std::vector<DeviceRow>{}))
        result += *row.name.get<std::string>();
    return result;
}

/// The archive of one range, with one of its numbers replaced.
PropertyList archiveOf(PropertyList location, PropertyList length)
{
    auto archive = farview::archivedIndexes(IndexSet(1));
    auto& objects = *archive.get<Dictionary>()->at("$objects").get<Array>();
    (*objects[1].get<Dictionary>())["NSRanges"] =
        Array{Dictionary{{"NSLocation", location}, {"NSLength", length}}};
    return archive;
}

TEST(DropAllowed, InEveryGapFromAboveTheFirstRowToBelowTheLastChosenOne)
{
    for (int gap = 0; gap <= 3; ++gap)
        EXPECT_TRUE(dropAllowed(true, gap, 3)) << gap;
    EXPECT_FALSE(dropAllowed(true, 4, 3));
    EXPECT_FALSE(dropAllowed(true, -1, 3));
    EXPECT_TRUE(dropAllowed(true, 0, 0));
}

TEST(DropAllowed, NeverOnARow)
{
    for (int row = -1; row <= 4; ++row)
        EXPECT_FALSE(dropAllowed(false, row, 3)) << row;
}

TEST(MovedRow, LandsInTheGap)
{
    EXPECT_EQ(moved("abc", 0, 2), "bac");
    EXPECT_EQ(moved("abc", 2, 0), "cab");
    EXPECT_EQ(moved("abc", 0, 3), "bca");
    EXPECT_EQ(moved("abc", 1, 1), "abc");
    EXPECT_EQ(moved("abc", 1, 2), "abc");
}

TEST(MovedRow, ARowOrGapThatIsNotThereIsRefused)
{
    for (const auto& [from, to] : {std::pair(-1, 0), {3, 0}, {0, -1}, {0, 4}})
        EXPECT_EQ(moved("abc", from, to), "") << from << ' ' << to;
    EXPECT_EQ(moved("abc", std::numeric_limits<std::int64_t>::max(), 0), "");
    EXPECT_EQ(moved("", 0, 0), "");
}

TEST(OrderIsUnstored, ExactlyWhenTheChosenRowsStandOtherwiseThanTheirStoredNames)
{
    const auto row = [](const char* name, bool chosen) {
        return DeviceRow{chosen, name, farview::DeviceOrderKind::found};
    };
    const std::vector<DeviceRow> rows = {row("A", true), row("B", true), row("C", false)};
    struct Case {
        Array stored;
        bool unstored;
    };
    const Case cases[] = {
        {{"A", "B"}, false},     {{"B", "A"}, true}, {{"A"}, true},    {{"A", "B", "C"}, true},
        {{"A", "B", "B"}, true}, {{}, true},         {{"A", 7}, true},
    };
    for (const auto& each : cases)
        EXPECT_EQ(farview::orderIsUnstored(rows, each.stored), each.unstored)
            << each.stored.size() << " stored";
    EXPECT_FALSE(farview::orderIsUnstored({}, {}));
    EXPECT_FALSE(farview::orderIsUnstored({row("C", false)}, {}));
    EXPECT_FALSE(farview::orderIsUnstored({{true, 7, {}}, row("A", true)}, {7, "A"}));
}

TEST(ArchivedIndexes, ComeBackAsTheyWere)
{
    for (const auto& indexes : {IndexSet(0), IndexSet(7), IndexSet({{1, 2}, {5, 1}})})
        EXPECT_EQ(farview::unarchivedIndexes(farview::archivedIndexes(indexes)), indexes);
}

TEST(ArchivedIndexes, AreAKeyedArchive)
{
    const auto archive = farview::archivedIndexes(IndexSet(7));
    const auto& parts = *archive.get<Dictionary>();
    EXPECT_EQ(parts.at("$version"), PropertyList(100000));
    EXPECT_EQ(parts.at("$archiver"), PropertyList("NSKeyedArchiver"));
    EXPECT_EQ(parts.at("$top"), PropertyList(Dictionary{{"root", Dictionary{{"CF$UID", 1}}}}));
    EXPECT_EQ(parts.at("$objects").get<Array>()->front(), PropertyList("$null"));
}

TEST(UnarchivedIndexes, RefuseNumbersThatNoRowHas)
{
    ASSERT_TRUE(farview::unarchivedIndexes(archiveOf(4, 1)));
    const auto least = std::numeric_limits<std::int64_t>::min(); // 2^63, read as a signed number
    const auto most = std::numeric_limits<std::int64_t>::max();
    for (const PropertyList& location :
         {PropertyList(-1), PropertyList(least), PropertyList(most), PropertyList(0.5),
          PropertyList("9223372036854775808"), PropertyList(true)})
        EXPECT_FALSE(farview::unarchivedIndexes(archiveOf(location, 1)));
    for (const PropertyList& length : {PropertyList(0), PropertyList(-1), PropertyList(most)})
        EXPECT_FALSE(farview::unarchivedIndexes(archiveOf(1, length)));
}

TEST(UnarchivedIndexes, RefuseAnArchiveWithoutAnIndexOrWithTooManyRanges)
{
    EXPECT_FALSE(farview::unarchivedIndexes(farview::archivedIndexes(IndexSet())));
    std::vector<IndexSet::Range> ranges;
    for (std::int64_t i = 0; i < 10'001; ++i)
        ranges.push_back({2 * i, 1});
    EXPECT_FALSE(farview::unarchivedIndexes(farview::archivedIndexes(IndexSet(ranges))));
    EXPECT_FALSE(farview::unarchivedIndexes(farview::archivedIndexes(IndexSet({{5, 2}, {6, 1}}))))
        << "ranges that overlap";
}

TEST(UnarchivedIndexes, RefuseWhatIsNoArchive)
{
    EXPECT_FALSE(farview::unarchivedIndexes(PropertyList("row 1")));
    EXPECT_FALSE(farview::unarchivedIndexes(PropertyList(std::string(10'000'000, 'x'))));
    EXPECT_FALSE(farview::unarchivedIndexes(Array{1, 2}));
    for (const char* part : {"$version", "$archiver", "$top", "$objects"}) {
        auto without = farview::archivedIndexes(IndexSet(1));
        without.get<Dictionary>()->erase(part);
        EXPECT_FALSE(farview::unarchivedIndexes(without)) << part;
    }
    for (const int root : {-1, 0, 2, 3}) {
        auto astray = farview::archivedIndexes(IndexSet(1));
        (*astray.get<Dictionary>())["$top"] = Dictionary{{"root", Dictionary{{"CF$UID", root}}}};
        EXPECT_FALSE(farview::unarchivedIndexes(astray)) << root;
    }
    auto crowded = farview::archivedIndexes(IndexSet(1));
    crowded.get<Dictionary>()->at("$objects").get<Array>()->resize(1'000'000);
    EXPECT_FALSE(farview::unarchivedIndexes(crowded));
}

} // namespace
