// The table of devices to connect to by itself.

#include "Tests/Source/PaneFixture.h"

#include "Source/FVEAutoConnectTable.h"

#include <set>

namespace
{

using farview::CellValue;
using farview::PropertyList;
using Array = PropertyList::Array;

class PaneAutoConnect : public PaneFixture
{
protected:
    /// Chosen B and A, on the network A, C and C, remembered D, C and B.
    void showExample()
    {
        setStored(kAutoConnectDevices, Array{"B", "A"});
        showWithState(1);
        announce({device("A", "a.local"), device("C", "c.local"), device("C", "c2.local")});
        fake.fileManager.putPropertyList(pane->seenDevicesFilename(), Array{"D", "C", "B"});
        setStored(kAutoConnectDevices, Array{"B", "A"});
        pane->buildDeviceList();
        ASSERT_EQ(rows(), (Texts{"*B", "*A", "C", "C", "D"})) << "chosen, then found, then seen";
    }
    farview::TableView& table() { return *pane->autoConnectTable(); }
    int rowCount() { return pane->numberOfRowsInTableView(table()); }
    CellValue cell(std::string_view column, int row)
    {
        return pane->objectValueForTableColumn(table(), column, row);
    }
    void tick(int row, bool flag)
    {
        pane->setObjectValue(table(), flag, kDevicesTableAutoConnectFlag, row);
    }
    void confirm(char digit, const std::string& name)
    {
        peers.add({std::string(64, digit), name, {}, {}});
    }
    /// The digits of the keys and the names of all that are confirmed.
    std::string confirmed() const
    {
        std::string all;
        for (const auto& peer : peers.all())
            all += (all.empty() ? "" : " ") + (peer.key[0] + peer.name);
        return all;
    }

    farview::PairedPeers peers{fake.preferences, farview::PairedPeers::devices};
};

TEST_F(PaneAutoConnect, WritingStoresTheChosenInOrderAndTheOthersOnce)
{
    showExample();
    pane->writeDeviceList();
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"B", "A"}));
    EXPECT_EQ(seenDevices(), (Texts{"C", "D"}));
    EXPECT_TRUE(fake.fileManager.createdDirectories().contains(
        FVEPreferencePane::applicationSupportFolder()));
}

TEST_F(PaneAutoConnect, UntickingMovesARowOutOfTheChosenOnes)
{
    showExample();
    tick(0, false);
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"A"}));
    EXPECT_EQ(seenDevices(), (Texts{"B", "C", "D"}));
    const auto now = rows();
    ASSERT_EQ(now.size(), 5u);
    EXPECT_EQ(Texts(now.begin(), now.begin() + 3), (Texts{"*A", "C", "C"}));
    EXPECT_EQ((std::set<std::string>{now[3], now[4]}), (std::set<std::string>{"B", "D"}));
    EXPECT_EQ(pane->countOfCheckedDevices(), 1);
}

TEST_F(PaneAutoConnect, TickingMovesARowToTheEndOfTheChosenOnes)
{
    showExample();
    tick(4, true);
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"B", "A", "D"}));
    EXPECT_EQ(rows(), (Texts{"*B", "*A", "*D", "C", "C"}));
}

TEST_F(PaneAutoConnect, OnlyTheBoxCanBeEdited)
{
    showExample();
    const auto before = rows();
    pane->setObjectValue(table(), std::string("X"), kDevicesTableDeviceName, 0);
    pane->setObjectValue(table(), std::string("X"), kDevicesTableAutoConnectFlag, 0);
    pane->setObjectValue(table(), true, "Other", 4);
    tick(-1, true);
    tick(5, true);
    EXPECT_EQ(rows(), before);
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"B", "A"}));
}

TEST_F(PaneAutoConnect, CellsShowTheFlagAndTheName)
{
    showExample();
    EXPECT_EQ(cell("AutoConnectFlag", 0), CellValue(true));
    EXPECT_EQ(cell("DeviceName", 0), CellValue(std::string("B")));
    EXPECT_EQ(cell("AutoConnectFlag", 4), CellValue(false));
    EXPECT_EQ(cell("DeviceName", 4), CellValue(std::string("D")));
    EXPECT_EQ(cell("DeviceOrderKind", 0), CellValue());
    EXPECT_EQ(cell("DeviceName", 5), CellValue());
    EXPECT_EQ(cell("DeviceName", -1), CellValue());
}

TEST_F(PaneAutoConnect, WithTheBoxOffTheTableHasNoRows)
{
    showExample();
    EXPECT_EQ(rowCount(), 5);
    pane->autoConnect()->performClick(nullptr);
    EXPECT_EQ(rowCount(), 0);
    EXPECT_EQ(rows().size(), 5u);
}

TEST_F(PaneAutoConnect, TheBoxFoldsTheTableAwayAndStoresTheOption)
{
    showExample();
    int reloads = 0;
    const auto watch = table().observe(
        [&](farview::Change change) { reloads += change == farview::Change::rows ? 1 : 0; });
    pane->autoConnect()->performClick(nullptr);
    EXPECT_FALSE(table().isEnabled());
    EXPECT_TRUE(table().isHidden());
    EXPECT_TRUE(table().enclosingScrollView().isHidden());
    EXPECT_EQ(stored(kAutoConnectOption), PropertyList(false));
    EXPECT_EQ(reloads, 1);
    pane->autoConnect()->performClick(nullptr);
    EXPECT_TRUE(table().isEnabled());
    EXPECT_FALSE(table().isHidden());
    EXPECT_FALSE(table().enclosingScrollView().isHidden());
    EXPECT_EQ(stored(kAutoConnectOption), PropertyList(true));
}

TEST_F(PaneAutoConnect, AtLoadTheTableFollowsTheStoredOption)
{
    setStored(kAutoConnectOption, false);
    load();
    EXPECT_EQ(pane->autoConnect()->state(), 0);
    EXPECT_TRUE(table().isHidden());
    EXPECT_TRUE(table().enclosingScrollView().isHidden());
    EXPECT_FALSE(table().isEnabled());
    EXPECT_EQ(table().draggedTypes(), (Texts{"DeviceNameTableViewDataType"}));
    EXPECT_EQ(table().dataSource().lock(), pane);

    newPane();
    setStored(kAutoConnectOption, true);
    load();
    EXPECT_EQ(pane->autoConnect()->state(), 1);
    EXPECT_FALSE(table().isHidden());
    EXPECT_TRUE(table().isEnabled());
}

TEST_F(PaneAutoConnect, TheOptionStoredElsewhereClicksTheBox)
{
    showExample();
    changeElsewhere(kAutoConnectOption, false);
    EXPECT_EQ(pane->autoConnect()->state(), 0);
    EXPECT_TRUE(table().isHidden());
    EXPECT_EQ(stored(kAutoConnectOption), PropertyList(false));
    changeElsewhere(kAutoConnectOption, true);
    EXPECT_EQ(pane->autoConnect()->state(), 1);
    EXPECT_EQ(rowCount(), 5);
}

TEST_F(PaneAutoConnect, ADisabledBoxDoesNotFollow)
{
    fake.registry.remove(driver);
    showWithState(1);
    ASSERT_FALSE(pane->autoConnect()->isEnabled());
    changeElsewhere(kAutoConnectOption, false);
    EXPECT_EQ(pane->autoConnect()->state(), 1);
    EXPECT_EQ(stored(kAutoConnectOption), PropertyList(false));
}

TEST_F(PaneAutoConnect, AnythingButABoxIsNoSender)
{
    showExample();
    pane->autoConnectPressed(nullptr);
    pane->autoConnectPressed(pane->statusLabel().get());
    EXPECT_FALSE(table().isHidden());
    EXPECT_EQ(stored(kAutoConnectOption), PropertyList(true));
}

TEST_F(PaneAutoConnect, AMissingOrBrokenFileGivesNoRows)
{
    setStored(kAutoConnectDevices, Array{});
    showWithState(1);
    EXPECT_EQ(rows(), Texts{});
    fake.fileManager.putPropertyList(pane->seenDevicesFilename(), PropertyList::Dictionary{});
    pane->buildDeviceList();
    EXPECT_EQ(rows(), Texts{});
    fake.fileManager.removeFile(pane->seenDevicesFilename());
    fake.fileManager.addFile(pane->seenDevicesFilename());
    pane->buildDeviceList();
    EXPECT_EQ(rows(), Texts{});
}

TEST_F(PaneAutoConnect, NamesThatAreNoTextsAreKeptAsTheyAre)
{
    const Array odd{42, PropertyList::Dictionary{{"k", "v"}}, "A"};
    setStored(kAutoConnectDevices, odd);
    showWithState(1);
    EXPECT_EQ(cell("DeviceName", 0), CellValue(std::string("42")));
    EXPECT_EQ(cell("DeviceName", 1), CellValue(std::string()));
    hide();
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(odd));
}

TEST_F(PaneAutoConnect, TenThousandNamesAreBuiltWrittenAndBuiltAgain)
{
    Array chosen;
    Array remembered;
    for (int number = 0; number < 10'000; ++number) {
        chosen.push_back("chosen " + std::to_string(number));
        remembered.push_back("seen " + std::to_string(number));
    }
    chosen.push_back("chosen 1"); // twice
    chosen.push_back(7);
    remembered.push_back(PropertyList::Dictionary{{"k", 1}});
    setStored(kAutoConnectDevices, chosen);
    fake.fileManager.putPropertyList(pane->seenDevicesFilename(), remembered);
    showWithPad();
    const std::size_t before = pane->autoConnectDevices().size();
    EXPECT_EQ(before, 20'004u);
    EXPECT_EQ(pane->countOfCheckedDevices(), 10'002);
    hide();
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(chosen));
    show();
    EXPECT_EQ(pane->autoConnectDevices().size(), before);
    tick(0, false);
    EXPECT_EQ(pane->countOfCheckedDevices(), 10'001);
    EXPECT_EQ(pane->autoConnectDevices().size(), before);
}

TEST_F(PaneAutoConnect, UntickingOneOfTwoEqualNamesLeavesTheOther)
{
    setStored(kAutoConnectDevices, Array{"A", "B", "A"});
    showWithState(1);
    tick(0, false);
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"B", "A"}));
    EXPECT_EQ(rows(), (Texts{"*B", "*A"}));
    EXPECT_EQ(seenDevices(), Texts{}) << "a name that is chosen anywhere is only chosen";
}

TEST_F(PaneAutoConnect, TickingOneOfTwoDevicesOfOneNameTicksTheName)
{
    showWithState(1);
    setStored(kAutoConnectDevices, Array{});
    announce({device("C", "c.local"), device("C", "c2.local")});
    ASSERT_EQ(rows(), (Texts{"C", "C"}));
    tick(1, true);
    EXPECT_EQ(rows(), Texts{"*C"});
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"C"}));
    tick(0, false);
    EXPECT_EQ(rows(), (Texts{"C", "C"}));
}

TEST_F(PaneAutoConnect, ADeviceRenamedWhileConnectedKeepsItsTickUnderTheOldNameOnly)
{
    setStored(kAutoConnectDevices, Array{"Pad"});
    showConnectedToPad();
    ASSERT_EQ(rows(), (Texts{"*Pad", "Slab"}));
    EXPECT_EQ(pane->remarkOnRow(table(), 0), "");
    leave({"Pad"});
    announce({device("Easel", "pad.local")});
    EXPECT_EQ(rows(), (Texts{"*Pad", "Slab", "Easel"}));
    EXPECT_EQ(pane->remarkOnRow(table(), 0), "Not on the network now");
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"Pad"}));
}

TEST_F(PaneAutoConnect, RowsOfDevicesThatAreAwayAreRemarkedOn)
{
    showExample();
    Texts remarks;
    for (int row = -1; row <= 5; ++row)
        remarks.push_back(pane->remarkOnRow(table(), row));
    EXPECT_EQ(remarks, (Texts{"", "Not on the network now", "", "", "",
                              "Seen before, not on the network now", ""}));
}

TEST_F(PaneAutoConnect, LeavingThePaneWritesItsList)
{
    showExample();
    fake.fileManager.removeFile(pane->seenDevicesFilename());
    hide();
    EXPECT_EQ(seenDevices(), (Texts{"C", "D"}));
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"B", "A"}));
}

TEST_F(PaneAutoConnect, TheFileLiesInTheUsersApplicationSupportFolder)
{
    fake.searchPaths.setDirectory(farview::SearchPathDirectory::applicationSupport,
                                  farview::userDomain, "/home/me/.local/share");
    EXPECT_EQ(pane->seenDevicesFilename(), "/home/me/.local/share/Farview/SeenDevices.plist");
}

TEST_F(PaneAutoConnect, NoDeviceIsDisabledOnlyForASelectedChosenDevice)
{
    showConnectedToPad();
    EXPECT_TRUE(pane->determineIfNoDevicesSelectedEnabled());
    setStored(kAutoConnectDevices, Array{"Pad"});
    EXPECT_FALSE(pane->determineIfNoDevicesSelectedEnabled());
    pane->setConnectedToOtherDevice(true);
    EXPECT_TRUE(pane->determineIfNoDevicesSelectedEnabled());
    pane->setConnectedToOtherDevice(false);
    setStored(kAutoConnectOption, false);
    EXPECT_TRUE(pane->determineIfNoDevicesSelectedEnabled());
    setStored(kAutoConnectOption, true);
    pane->setSelectedNetService(nullptr);
    EXPECT_TRUE(pane->determineIfNoDevicesSelectedEnabled());
}

TEST_F(PaneAutoConnect, AForgottenDeviceThatIsAwayIsNeitherChosenNorRemembered)
{
    showExample();
    EXPECT_TRUE(table().userDeletes(0)) << "B, chosen and away";
    EXPECT_EQ(rows(), (Texts{"*A", "C", "C", "D"}));
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"A"}));
    EXPECT_TRUE(table().userDeletes(3)) << "D, seen before";
    EXPECT_EQ(rows(), (Texts{"*A", "C", "C"}));
    EXPECT_EQ(seenDevices(), Texts{"C"});
    hide();
    EXPECT_EQ(seenDevices(), Texts{"C"});
}

TEST_F(PaneAutoConnect, AForgottenDeviceInSightLosesItsTickAndStaysListed)
{
    showExample();
    EXPECT_TRUE(table().userDeletes(1)) << "A, chosen and in sight";
    EXPECT_EQ(rows(), (Texts{"*B", "A", "C", "C", "D"}));
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"B"}));
    EXPECT_FALSE(table().userDeletes(1)) << "it would be listed again at once";
}

TEST_F(PaneAutoConnect, ForgottenDevicesComeBackInTheirPlaceTheLastOneFirst)
{
    showExample();
    table().userDeletes(0);
    table().userDeletes(0);
    table().userDeletes(3);
    EXPECT_EQ(rows(), (Texts{"A", "C", "C"}));
    EXPECT_TRUE(table().userUndoesDelete());
    EXPECT_EQ(rows(), (Texts{"A", "C", "C", "D"}));
    EXPECT_TRUE(table().userUndoesDelete());
    EXPECT_EQ(rows(), (Texts{"*A", "C", "C", "D"}));
    EXPECT_TRUE(table().userUndoesDelete());
    EXPECT_EQ(rows(), (Texts{"*B", "*A", "C", "C", "D"}));
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"B", "A"}));
    EXPECT_EQ(seenDevices(), (Texts{"C", "D"}));
    EXPECT_FALSE(table().userUndoesDelete());
}

TEST_F(PaneAutoConnect, ForgettingStoresTheOrderOnShowAndEndsADrag)
{
    showExample();
    ASSERT_TRUE(table().userMovesRow(0, 2));
    EXPECT_EQ(rows(), (Texts{"*A", "*B", "C", "C", "D"}));
    const auto drag = table().userDrags(0);
    ASSERT_TRUE(drag);
    EXPECT_TRUE(table().userDeletes(4));
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"A", "B"}));
    EXPECT_FALSE(table().mayDrop(*drag, 2));
}

TEST_F(PaneAutoConnect, AForgottenDeviceIsNoLongerConfirmedUntilThatIsTakenBack)
{
    confirm('a', "A");
    confirm('b', "B");
    showExample();
    EXPECT_TRUE(table().userDeletes(1)) << "A, chosen and in sight";
    EXPECT_EQ(confirmed(), "bB");
    EXPECT_EQ(posts(kPairedDevicesDidChange).size(), 1U);
    EXPECT_TRUE(table().userUndoesDelete());
    EXPECT_EQ(confirmed(), "bB aA");
    EXPECT_TRUE(table().userDeletes(4)) << "D was never confirmed";
    EXPECT_EQ(confirmed(), "bB aA");
    EXPECT_EQ(posts(kPairedDevicesDidChange).size(), 1U);
}

TEST_F(PaneAutoConnect, AConfirmedDeviceInSightCanBeForgottenAlsoWithoutATick)
{
    confirm('c', "C");
    showExample();
    ASSERT_EQ(rows(), (Texts{"*B", "*A", "C", "C", "D"}));
    EXPECT_TRUE(table().userMayDelete(2));
    EXPECT_TRUE(table().userDeletes(2));
    EXPECT_EQ(confirmed(), "");
    EXPECT_EQ(rows(), (Texts{"*B", "*A", "C", "C", "D"})) << "it is still there";
    EXPECT_FALSE(table().userMayDelete(2)) << "there is nothing left to forget";
    EXPECT_TRUE(table().userUndoesDelete());
    EXPECT_EQ(confirmed(), "cC");
    EXPECT_EQ(rows(), (Texts{"*B", "*A", "C", "C", "D"}));
}

TEST_F(PaneAutoConnect, TakingBackDoesNotReplaceADeviceThatWasConfirmedMeanwhile)
{
    confirm('a', "A");
    showExample();
    EXPECT_TRUE(table().userDeletes(1));
    confirm('e', "A");
    EXPECT_TRUE(table().userUndoesDelete());
    EXPECT_EQ(confirmed(), "eA");
    EXPECT_EQ(rows(), (Texts{"*B", "*A", "C", "C", "D"}));
}

TEST_F(PaneAutoConnect, ARowWithoutANameForgetsNoDeviceThatWasConfirmedByItsAddress)
{
    confirm('a', "");
    setStored(kAutoConnectDevices, Array{""});
    loadAndShow();
    ASSERT_TRUE(table().userDeletes(0));
    EXPECT_EQ(confirmed(), "a");
}

TEST_F(PaneAutoConnect, NothingIsForgottenWhileTheTableIsFoldedAway)
{
    showExample();
    pane->autoConnect()->performClick(nullptr);
    EXPECT_EQ(rowCount(), 0);
    EXPECT_FALSE(table().userDeletes(0));
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"B", "A"}));
}

} // namespace
