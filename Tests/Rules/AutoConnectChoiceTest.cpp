#include "Common/Rules/AutoConnectChoice.h"

#include <gtest/gtest.h>

using namespace farview;

namespace
{

using Array = PropertyList::Array;
using Names = std::unordered_set<std::string>;

AnnouncedDevice there(const std::string& name) { return {name, false, true}; }
AnnouncedDevice busy(const std::string& name) { return {name, true, true}; }
AnnouncedDevice unresolved(const std::string& name) { return {name, false, false}; }

/// What is chosen, and -1 for nothing.
int choice(const Array& chosen, const std::vector<AnnouncedDevice>& announced,
           const Names& heldOff = {})
{
    const auto index = autoConnectChoice(chosen, announced, heldOff);
    return index ? static_cast<int>(*index) : -1;
}

struct Row {
    const char* what;
    Array chosen;
    std::vector<AnnouncedDevice> announced;
    Names heldOff;
    int expected;
};

const std::vector<Row> table = {
    {"nothing chosen", {}, {there("A")}, {}, -1},
    {"nothing there", {"A"}, {}, {}, -1},
    {"the first of the list, not of the network", {"B", "A"}, {there("A"), there("B")}, {}, 1},
    {"the next when the first is not there", {"B", "A"}, {there("A")}, {}, 0},
    {"the next when the first is busy", {"B", "A"}, {there("A"), busy("B")}, {}, 0},
    {"the next when the first is held off", {"B", "A"}, {there("A"), there("B")}, {"B"}, 0},
    {"the next when the first is unresolved", {"B", "A"}, {there("A"), unresolved("B")}, {}, 0},
    {"none when all are busy", {"A", "B"}, {busy("A"), busy("B")}, {}, -1},
    {"none when all are held off", {"A", "B"}, {there("A"), there("B")}, {"A", "B"}, -1},
    {"none that was not chosen", {"A"}, {there("B"), there("a"), there("A ")}, {}, -1},
    {"a name in the list twice", {"B", "A", "B", "A"}, {there("A")}, {}, 0},
    {"the free one of two of a name", {"A"}, {busy("A"), there("A")}, {}, 1},
    {"the first of two of a name", {"A"}, {there("A"), there("A")}, {}, 0},
    {"held off means every device of the name", {"A"}, {there("A"), there("A")}, {"A"}, -1},
    {"the empty name", {""}, {there("A"), there("")}, {}, 1},
    {"names that are no texts", {7, true, Array{"A"}, "A"}, {there("7"), there("A")}, {}, 1},
    {"only names that are no texts", {7, true, Array{"A"}}, {there("7"), there("A")}, {}, -1},
};

TEST(AutoConnectChoice, IsTheFirstOfTheUsersListThatIsThereAndFree)
{
    for (const auto& row : table)
        EXPECT_EQ(choice(row.chosen, row.announced, row.heldOff), row.expected) << row.what;
}

TEST(AutoConnectChoice, FindsTheLastOfTenThousandNames)
{
    constexpr int count = 10000;
    Array chosen;
    std::vector<AnnouncedDevice> announced;
    Names heldOff;
    for (int index = 0; index < count; ++index) {
        const std::string name = "Device " + std::to_string(index);
        chosen.insert(chosen.end(), {name, name, index});
        announced.push_back(there(name));
        if (index + 1 < count)
            heldOff.insert(name);
    }
    EXPECT_EQ(choice(chosen, announced, heldOff), count - 1);
    EXPECT_EQ(newlyChosenNames({}, chosen).size(), static_cast<std::size_t>(count));
}

TEST(NewlyChosenNames, AreThoseThatWereNotThereBefore)
{
    const Array before{"A", 7, "B"};
    const std::vector<std::string> added{"D", "C"};
    EXPECT_EQ(newlyChosenNames(before, {"D", "B", "A", "C", "D", 8, true}), added);
    EXPECT_TRUE(newlyChosenNames(before, {"B", "A"}).empty()) << "order does not matter";
    EXPECT_TRUE(newlyChosenNames(before, {}).empty());
}

} // namespace
