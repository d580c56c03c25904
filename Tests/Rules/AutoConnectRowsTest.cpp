#include "Common/Rules/AutoConnectRows.h"

#include <gtest/gtest.h>

using namespace farview;

namespace
{

using Array = PropertyList::Array;

DeviceRow chosen(PropertyList name) { return {true, std::move(name), DeviceOrderKind::chosen}; }
DeviceRow chosenAndThere(PropertyList name)
{
    return {true, std::move(name), DeviceOrderKind::chosen, true};
}
DeviceRow found(PropertyList name)
{
    return {false, std::move(name), DeviceOrderKind::found, true};
}
DeviceRow seen(PropertyList name) { return {false, std::move(name), DeviceOrderKind::seen}; }

std::vector<DeviceRow> exampleRows()
{
    return autoConnectRows({"B", "A"}, {"A", "C", "C"}, {"D", "C", "B"});
}

TEST(AutoConnectRows, AreChosenThenFoundThenSeen)
{
    EXPECT_EQ(exampleRows(), (std::vector<DeviceRow>{chosen("B"), chosenAndThere("A"), found("C"),
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

TEST(AutoConnectRows, TenThousandNamesKeepTheirOrderTheirDuplicatesAndTheirKind)
{
    Array stored;
    Array remembered;
    std::vector<std::string> onNetwork;
    for (int number = 0; number < 10'000; ++number) {
        const PropertyList name =
            number % 3 == 0 ? PropertyList(number) : PropertyList("name " + std::to_string(number));
        stored.push_back(name);
        stored.push_back(name);
        remembered.push_back(name);
        remembered.push_back("seen " + std::to_string(number));
        onNetwork.push_back("name " + std::to_string(number));
    }
    const auto rows = autoConnectRows(stored, onNetwork, remembered);
    const auto written = rowsToStore(rows);
    EXPECT_EQ(written.chosen, stored);
    // A number is no name of a device, so every third device is new.
    ASSERT_EQ(rows.size(), 20'000u + 3'334u + 10'000u);
    EXPECT_EQ(rows[20'000], found("name 0"));
    EXPECT_EQ(rows[23'334], seen("seen 0"));
    EXPECT_EQ(written.seen.size(), 13'334u);
    EXPECT_EQ(countOfChosenRows(rows), 20'000);
}

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

TEST(AutoConnectRows, KeepAHundredThousandNames)
{
    // Comparing each with each would not end within the limit of a test.
    constexpr std::size_t count = 100000;
    Array names;
    std::vector<std::string> onNetwork;
    for (std::size_t index = 0; index < count; ++index) {
        names.push_back("device " + std::to_string(index));
        onNetwork.push_back("device " + std::to_string(index + count / 2));
    }
    const auto stored = rowsToStore(autoConnectRows(names, onNetwork, names));
    EXPECT_EQ(stored.chosen.size(), count);
}

TEST(ForgettingARow, ChangesNothingForADeviceInSightThatIsNotChosen)
{
    EXPECT_FALSE(mayForget(found("C")));
    EXPECT_TRUE(mayForget(seen("D")));
    EXPECT_TRUE(mayForget(chosen("B")));
    EXPECT_TRUE(mayForget(chosenAndThere("A"))) << "it loses its tick";
}

TEST(ForgettingARow, TakesEveryRowOfItsNameAndNoOther)
{
    const std::vector<DeviceRow> rows = {chosen("A"), chosen("B"), chosen("A"), chosen(7),
                                         seen("7")};
    EXPECT_EQ(rowsWithout(rows, "A"), (std::vector<DeviceRow>{chosen("B"), chosen(7), seen("7")}));
    EXPECT_EQ(rowsWithout(rows, 7),
              (std::vector<DeviceRow>{chosen("A"), chosen("B"), chosen("A"), seen("7")}));
    EXPECT_EQ(rowsWithout(rows, "none"), rows);
}

TEST(ForgettingARow, IsUndoneWhereTheRowStood)
{
    struct Case {
        const char* what;
        std::vector<DeviceRow> rows;
        ForgottenRow forgotten;
        std::vector<DeviceRow> expected;
    };
    const std::vector<Case> cases = {
        {"chosen",
         {chosen("A"), chosen("C")},
         {chosen("B"), 1},
         {chosen("A"), chosen("B"), chosen("C")}},
        {"chosen, others gone", {seen("D")}, {chosen("B"), 2}, {chosen("B"), seen("D")}},
        {"seen", {chosen("A"), seen("E")}, {seen("D"), 1}, {chosen("A"), seen("D"), seen("E")}},
        {"seen, others chosen",
         {chosen("A"), chosen("B")},
         {seen("D"), 0},
         {chosen("A"), chosen("B"), seen("D")}},
        {"the only one", {}, {seen("D"), 4}, {seen("D")}},
        {"chosen, in sight since", {found("A")}, {chosen("A"), 0}, {chosen("A"), found("A")}},
        {"chosen again since",
         {chosen("B"), chosen("A")},
         {chosen("A"), 0},
         {chosen("B"), chosen("A")}},
        {"seen again since", {found("D")}, {seen("D"), 0}, {found("D")}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(rowsWith(each.rows, each.forgotten), each.expected) << each.what;
}

} // namespace
