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

TEST(DeviceMenu, HasTwoEntriesWhenThereIsNothing)
{
    EXPECT_EQ(deviceMenuEntries({}), (Entries{noDevice, connectToOther}));
}

TEST(DeviceMenu, ListsDevicesInTheirOrderWithBusyOnesDisabled)
{
    DeviceMenuInputs inputs;
    inputs.devices = {{"B", false, false}, {"A", true, false}, {"B", false, false}};
    EXPECT_EQ(deviceMenuEntries(inputs),
              (Entries{noDevice, free("B", 0), busy("A", 1), free("B", 2), connectToOther}));
}

TEST(DeviceMenu, NoDeviceEntryIsWithoutTargetWhenItMayNotBeChosen)
{
    DeviceMenuInputs inputs;
    inputs.noDeviceEntryEnabled = false;
    const MenuEntry disabled{MenuEntryKind::noDevice, "", false, false, false, 0};
    EXPECT_EQ(deviceMenuEntries(inputs), (Entries{disabled, connectToOther}));
}

TEST(DeviceMenu, AListedSelectedDeviceNeedsNoEntryOfItsOwn)
{
    DeviceMenuInputs inputs;
    inputs.devices = {{"A", false, true}, {"B", false, false}};
    inputs.selectedName = "A";
    EXPECT_EQ(deviceMenuEntries(inputs),
              (Entries{noDevice, free("A", 0), free("B", 1), connectToOther}));
}

TEST(DeviceMenu, ASelectedDeviceThatIsNotListedStandsBelowEverything)
{
    DeviceMenuInputs inputs;
    inputs.devices = {{"B", false, false}};
    inputs.selectedName = "A";
    EXPECT_EQ(deviceMenuEntries(inputs),
              (Entries{noDevice, free("B", 0), connectToOther, inBackground("A")}));
}

TEST(DeviceMenu, AnotherDeviceOfTheSelectedNameDoesNotCountAsIt)
{
    DeviceMenuInputs inputs;
    inputs.devices = {{"A", false, false}};
    inputs.selectedName = "A";
    EXPECT_EQ(deviceMenuEntries(inputs),
              (Entries{noDevice, free("A", 0), connectToOther, inBackground("A")}));
}

TEST(DeviceMenu, AConnectionByAddressStandsAboveConnectToOther)
{
    DeviceMenuInputs inputs;
    inputs.devices = {{"B", false, false}};
    inputs.connectedByAddress = true;
    inputs.address = "10.0.0.5";
    EXPECT_EQ(deviceMenuEntries(inputs),
              (Entries{noDevice, free("B", 0), address("10.0.0.5"), connectToOther}));
}

TEST(DeviceMenu, AnAddressHidesADeviceInTheBackground)
{
    DeviceMenuInputs inputs;
    inputs.connectedByAddress = true;
    inputs.address = "10.0.0.5";
    inputs.selectedName = "A";
    EXPECT_EQ(deviceMenuEntries(inputs), (Entries{noDevice, address("10.0.0.5"), connectToOther}));
}

TEST(DeviceMenu, AListedSelectedDeviceHidesTheAddress)
{
    DeviceMenuInputs inputs;
    inputs.devices = {{"A", false, true}};
    inputs.selectedName = "A";
    inputs.connectedByAddress = true;
    inputs.address = "10.0.0.5";
    EXPECT_EQ(deviceMenuEntries(inputs), (Entries{noDevice, free("A", 0), connectToOther}));
}

TEST(DeviceMenu, AnAddressThatIsNotInUseIsNotShown)
{
    DeviceMenuInputs inputs;
    inputs.address = "10.0.0.5";
    EXPECT_EQ(deviceMenuEntries(inputs), (Entries{noDevice, connectToOther}));
}

TEST(DeviceMenu, AConnectionByAnEmptyOrUnknownAddressHasNoEntry)
{
    DeviceMenuInputs inputs;
    inputs.connectedByAddress = true;
    EXPECT_EQ(deviceMenuEntries(inputs), (Entries{noDevice, connectToOther}));
    inputs.address = "";
    EXPECT_EQ(deviceMenuEntries(inputs), (Entries{noDevice, connectToOther}));
}

TEST(DeviceMenu, AnEmptyAddressWithASelectedDeviceShowsThatDeviceInTheBackground)
{
    DeviceMenuInputs inputs;
    inputs.connectedByAddress = true;
    inputs.address = "";
    inputs.selectedName = "A";
    EXPECT_EQ(deviceMenuEntries(inputs), (Entries{noDevice, connectToOther, inBackground("A")}));
}

TEST(SelectedEntry, IsTheDeviceThenTheAddressThenNone)
{
    EXPECT_EQ(selectedEntry(true, true), SelectedEntry::device);
    EXPECT_EQ(selectedEntry(true, false), SelectedEntry::device);
    EXPECT_EQ(selectedEntry(false, true), SelectedEntry::address);
    EXPECT_EQ(selectedEntry(false, false), SelectedEntry::noDevice);
}

} // namespace
