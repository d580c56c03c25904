#include "Common/Rules/DeviceMenu.h"

#include <gtest/gtest.h>

using namespace farview;

namespace
{

const MenuEntry noDevice{MenuEntryKind::noDevice, "", true, true, false, 0};
const MenuEntry connectToOther{MenuEntryKind::connectToOther, "", true, false, false, 0};

MenuEntry free(const char* name, std::size_t index)
{
    return {MenuEntryKind::device, name, true, true, false, index};
}

MenuEntry busy(const char* name, std::size_t index)
{
    return {MenuEntryKind::device, name, false, false, false, index, true};
}

MenuEntry address(const char* text) { return {MenuEntryKind::address, text, true, true, true, 0}; }

MenuEntry inBackground(const char* name)
{
    return {MenuEntryKind::inBackground, name, false, false, true, 0};
}

using Entries = std::vector<MenuEntry>;

TEST(DeviceMenu, FollowsTheTable)
{
    struct Row {
        const char* what;
        DeviceMenuInputs inputs;
        Entries expected;
    };
    const MenuEntry disabled{MenuEntryKind::noDevice, "", false, false, false, 0};
    const char* typed = "10.0.0.5";
    const std::vector<Row> table = {
        {"nothing there", {}, {noDevice, connectToOther}},
        {"devices in their order, busy ones disabled",
         {.devices = {{"B", false, false}, {"A", true, false}, {"B", false, false}}},
         {noDevice, free("B", 0), busy("A", 1), free("B", 2), connectToOther}},
        {"none may not be chosen", {.noDeviceEntryEnabled = false}, {disabled, connectToOther}},
        {"a listed selected device has no entry of its own",
         {.devices = {{"A", false, true}, {"B", false, false}}, .selectedName = "A"},
         {noDevice, free("A", 0), free("B", 1), connectToOther}},
        {"a selected device that is not listed stands below everything",
         {.devices = {{"B", false, false}}, .selectedName = "A"},
         {noDevice, free("B", 0), connectToOther, inBackground("A")}},
        {"another device of the selected name does not count as it",
         {.devices = {{"A", false, false}}, .selectedName = "A"},
         {noDevice, free("A", 0), connectToOther, inBackground("A")}},
        {"an address in use stands above connecting to another",
         {.devices = {{"B", false, false}}, .connectedByAddress = true, .address = typed},
         {noDevice, free("B", 0), address(typed), connectToOther}},
        {"an address hides a device in the background",
         {.connectedByAddress = true, .address = typed, .selectedName = "A"},
         {noDevice, address(typed), connectToOther}},
        {"a listed selected device hides the address",
         {.devices = {{"A", false, true}},
          .connectedByAddress = true,
          .address = typed,
          .selectedName = "A"},
         {noDevice, free("A", 0), connectToOther}},
        {"an address that is not in use", {.address = typed}, {noDevice, connectToOther}},
        {"an unknown address", {.connectedByAddress = true}, {noDevice, connectToOther}},
        {"an empty address",
         {.connectedByAddress = true, .address = ""},
         {noDevice, connectToOther}},
        {"an empty address hides no device in the background",
         {.connectedByAddress = true, .address = "", .selectedName = "A"},
         {noDevice, connectToOther, inBackground("A")}},
    };
    for (const auto& row : table)
        EXPECT_EQ(deviceMenuEntries(row.inputs), row.expected) << row.what;
}

TEST(SelectedEntry, IsTheDeviceThenTheAddressThenNone)
{
    EXPECT_EQ(selectedEntry(true, true), SelectedEntry::device);
    EXPECT_EQ(selectedEntry(true, false), SelectedEntry::device);
    EXPECT_EQ(selectedEntry(false, true), SelectedEntry::address);
    EXPECT_EQ(selectedEntry(false, false), SelectedEntry::noDevice);
}

} // namespace
