#include "Common/Rules/AutoConnectRows.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace farview;

namespace
{

using Array = PropertyList::Array;

DeviceRow chosen(PropertyList name) { return {true, std::move(name), DeviceOrderKind::chosen}; }
DeviceRow found(PropertyList name) { return {false, std::move(name), DeviceOrderKind::found}; }
DeviceRow seen(PropertyList name) { return {false, std::move(name), DeviceOrderKind::seen}; }

std::vector<DeviceRow> exampleRows()
{
    return autoConnectRows({"B", "A"}, {"A", "C", "C"}, {"D", "C", "B"});
}

TEST(AutoConnectRows, AreChosenThenFoundThenSeen)
{
    EXPECT_EQ(exampleRows(), (std::vector<DeviceRow>{chosen("B"), chosen("A"), found("C"),
                                                     found("C"), seen("D")}));
}

TEST(AutoConnectRows, KeepDuplicatesOfEachSource)
{
    EXPECT_EQ(autoConnectRows({"A", "A"}, {}, {"D", "D"}),
              (std::vector<DeviceRow>{chosen("A"), chosen("A"), seen("D"), seen("D")}));
}

TEST(AutoConnectRows, KeepNamesThatAreNoTexts)
{
    const Array odd{7, Array{"x"}, PropertyList::Dictionary{{"k", true}}};
    const auto rows = autoConnectRows(odd, {"7"}, odd);
    ASSERT_EQ(rows.size(), 4u) << "the number 7 is not the text 7";
    EXPECT_EQ(rows[0], chosen(7));
    EXPECT_EQ(rows[2], chosen(PropertyList::Dictionary{{"k", true}}));
    EXPECT_EQ(rows[3], found("7"));
    EXPECT_EQ(rowsToStore(rows).chosen, odd);
}

TEST(AutoConnectRows, AreNoneWithoutSources) { EXPECT_TRUE(autoConnectRows({}, {}, {}).empty()); }

TEST(RowsToStore, AreTheChosenInOrderAndEveryOtherOnce)
{
    const auto stored = rowsToStore(exampleRows());
    EXPECT_EQ(stored.chosen, (Array{"B", "A"}));
    EXPECT_EQ(stored.seen, (Array{"C", "D"}));
}

TEST(RowsToStore, ANameThatIsChosenAnywhereIsOnlyChosen)
{
    const auto stored = rowsToStore({found("A"), chosen("A"), found("B")});
    EXPECT_EQ(stored.chosen, (Array{"A"}));
    EXPECT_EQ(stored.seen, (Array{"B"}));
}

TEST(RowsToStore, AChosenDuplicateStaysOne)
{
    EXPECT_EQ(rowsToStore({chosen("A"), chosen("A")}).chosen, (Array{"A", "A"}));
}

TEST(CountOfChosenRows, CountsThem)
{
    EXPECT_EQ(countOfChosenRows({}), 0);
    EXPECT_EQ(countOfChosenRows(exampleRows()), 2);
}

TEST(NoDeviceEntry, IsDisabledOnlyWhenAutoConnectionWouldUndoIt)
{
    const std::string name = "A";
    const std::string other = "B";
    const Array list{"A"};
    EXPECT_FALSE(noDeviceEntryEnabled(true, false, &name, list));
    EXPECT_TRUE(noDeviceEntryEnabled(false, false, &name, list)) << "auto-connect is off";
    EXPECT_TRUE(noDeviceEntryEnabled(true, true, &name, list)) << "connected by address";
    EXPECT_TRUE(noDeviceEntryEnabled(true, false, nullptr, list)) << "nothing selected";
    EXPECT_TRUE(noDeviceEntryEnabled(true, false, &other, list)) << "not in the list";
}

double secondsFor(std::size_t count)
{
    Array names;
    std::vector<std::string> onNetwork;
    for (std::size_t index = 0; index < count; ++index) {
        names.push_back("device " + std::to_string(index));
        onNetwork.push_back("device " + std::to_string(index + count / 2));
    }
    const auto start = std::chrono::steady_clock::now();
    const auto stored = rowsToStore(autoConnectRows(names, onNetwork, names));
    const std::chrono::duration<double> span = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(stored.chosen.size(), count);
    return span.count();
}

TEST(AutoConnectRows, StayQuickForManyThousandNames)
{
    // Comparing each with each would take minutes here; one set look-up each takes a blink.
    EXPECT_LT(secondsFor(100000), 10.0);
}

} // namespace
