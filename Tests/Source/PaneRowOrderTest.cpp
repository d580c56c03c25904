// Bringing the chosen devices into another order.

#include "Tests/Source/PaneFixture.h"

#include "Common/Rules/RowOrder.h"
#include "Source/FVEAutoConnectTable.h"

#include <limits>

namespace
{

using farview::DraggingInfo;
using farview::DragOperation;
using farview::DropOperation;
using farview::IndexSet;
using farview::Pasteboard;
using farview::PropertyList;
using Array = PropertyList::Array;

class PaneRowOrder : public PaneFixture
{
protected:
    /// Chosen A, B and C, on the network D.
    void showExample()
    {
        setStored(kAutoConnectDevices, Array{"A", "B", "C"});
        showWithState(1);
        announce({device("D", "d.local")});
        ASSERT_EQ(rows(), (Texts{"*A", "*B", "*C", "D"}));
    }
    farview::TableView& table() { return *pane->autoConnectTable(); }
    /// What a drag of that row carries; null when the row cannot be dragged.
    std::shared_ptr<Pasteboard> dragged(std::int64_t row)
    {
        auto pasteboard = std::make_shared<Pasteboard>();
        const bool begins = pane->writeRowsWithIndexes(table(), IndexSet(row), *pasteboard);
        return begins ? pasteboard : nullptr;
    }
    std::shared_ptr<Pasteboard> carrying(PropertyList archive)
    {
        auto pasteboard = std::make_shared<Pasteboard>();
        pasteboard->declareTypes({kDeviceNameTableViewDataType});
        pasteboard->setPropertyList(std::move(archive), kDeviceNameTableViewDataType);
        return pasteboard;
    }
    bool isShownAsUnsaved() const { return !pane->orderHintLabel()->isHidden(); }
    bool drop(const std::shared_ptr<Pasteboard>& pasteboard, int row,
              DropOperation operation = DropOperation::above)
    {
        return pane->acceptDrop(table(), DraggingInfo(pasteboard), row, operation);
    }
    DragOperation proposed(int row, DropOperation operation = DropOperation::above)
    {
        return pane->validateDrop(table(), DraggingInfo(dragged(0)), row, operation);
    }
};

TEST_F(PaneRowOrder, OnlyAChosenRowCanBeDragged)
{
    showExample();
    EXPECT_NE(dragged(0), nullptr);
    EXPECT_NE(dragged(2), nullptr);
    EXPECT_EQ(dragged(3), nullptr);
    EXPECT_EQ(dragged(4), nullptr);
    EXPECT_EQ(dragged(-1), nullptr);
    Pasteboard pasteboard;
    EXPECT_FALSE(pane->writeRowsWithIndexes(table(), IndexSet(), pasteboard));
}

TEST_F(PaneRowOrder, WithThreeChosenRowsADropIsProposedUpToTheGapBelowThem)
{
    showExample();
    EXPECT_EQ(proposed(0), DragOperation::move);
    EXPECT_EQ(proposed(3), DragOperation::move);
    EXPECT_EQ(proposed(4), DragOperation::none);
    EXPECT_EQ(proposed(-1), DragOperation::none);
    for (int row = 0; row < 4; ++row)
        EXPECT_EQ(proposed(row, DropOperation::on), DragOperation::none) << row;
    EXPECT_EQ(static_cast<int>(DragOperation::move), 16);
}

TEST_F(PaneRowOrder, ARowLandsInTheGapItIsDroppedInto)
{
    showExample();
    EXPECT_TRUE(drop(dragged(0), 2));
    EXPECT_EQ(rows(), (Texts{"*B", "*A", "*C", "D"}));
    EXPECT_TRUE(drop(dragged(2), 0));
    EXPECT_EQ(rows(), (Texts{"*C", "*B", "*A", "D"}));
}

TEST_F(PaneRowOrder, ADropTellsTheTableAndWritesNothing)
{
    showExample();
    int reloads = 0;
    const auto watch = table().observe(
        [&](farview::Change change) { reloads += change == farview::Change::rows ? 1 : 0; });
    const auto writes = fake.fileManager.writes().size();
    ASSERT_TRUE(drop(dragged(0), 3));
    EXPECT_EQ(reloads, 2) << "another number of rows, and other rows";
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"A", "B", "C"}));
    EXPECT_EQ(fake.fileManager.writes().size(), writes);
}

TEST_F(PaneRowOrder, ADeviceThatComesBeforeThatLosesTheNewOrder)
{
    showExample();
    ASSERT_TRUE(drop(dragged(0), 3));
    announce({device("E", "e.local")});
    EXPECT_EQ(rows(), (Texts{"*A", "*B", "*C", "D", "E"}));
    EXPECT_FALSE(isShownAsUnsaved());
}

TEST_F(PaneRowOrder, AnOrderThatIsNotStoredIsShownAsSuchUntilATickOrLeavingThePaneStoresIt)
{
    showExample();
    EXPECT_FALSE(isShownAsUnsaved());
    ASSERT_TRUE(drop(dragged(0), 3));
    EXPECT_TRUE(isShownAsUnsaved());
    pane->setObjectValue(table(), true, kDevicesTableAutoConnectFlag, 3);
    EXPECT_FALSE(isShownAsUnsaved());
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"B", "C", "A", "D"}));
    ASSERT_TRUE(table().userMovesRow(0, 2));
    EXPECT_TRUE(isShownAsUnsaved());
    hide();
    EXPECT_FALSE(isShownAsUnsaved());
    EXPECT_EQ(stored(kAutoConnectDevices), PropertyList(Array{"C", "B", "A", "D"}));
}

TEST_F(PaneRowOrder, ARowCarriedBackToItsPlaceLeavesNothingToSave)
{
    showExample();
    ASSERT_TRUE(drop(dragged(0), 3));
    ASSERT_TRUE(drop(dragged(2), 0));
    EXPECT_FALSE(isShownAsUnsaved());
    ASSERT_TRUE(drop(dragged(1), 1));
    EXPECT_FALSE(isShownAsUnsaved()) << "it stayed where it was";
}

TEST_F(PaneRowOrder, WithTheTableFoldedAwayNothingIsSaidOfItsOrder)
{
    showExample();
    ASSERT_TRUE(drop(dragged(0), 3));
    pane->autoConnect()->performClick(nullptr);
    EXPECT_FALSE(isShownAsUnsaved());
    pane->autoConnect()->performClick(nullptr);
    EXPECT_TRUE(isShownAsUnsaved());
}

TEST_F(PaneRowOrder, TheKeyboardMovesARowByTheSameRules)
{
    showExample();
    EXPECT_TRUE(table().userMovesRow(0, 2));
    EXPECT_EQ(rows(), (Texts{"*B", "*A", "*C", "D"}));
    EXPECT_FALSE(table().userMovesRow(2, 4));
    EXPECT_FALSE(table().userMovesRow(3, 0));
    EXPECT_FALSE(table().userMovesRow(0, -1));
    pane->autoConnect()->performClick(nullptr);
    EXPECT_FALSE(table().userMovesRow(0, 2)) << "the table has no rows now";
}

TEST_F(PaneRowOrder, AHostileDropChangesNothing)
{
    showExample();
    const auto before = rows();
    for (const int row : {-1, 4, 5, 1'000'000, -1'000'000})
        EXPECT_FALSE(drop(dragged(0), row)) << row;
    EXPECT_FALSE(drop(dragged(0), 1, DropOperation::on));
    EXPECT_FALSE(drop(std::make_shared<Pasteboard>(), 0));
    EXPECT_FALSE(drop(carrying(std::string(10'000'000, 'x')), 0));
    EXPECT_FALSE(drop(carrying(farview::archivedIndexes(IndexSet())), 0));
    EXPECT_FALSE(drop(carrying(farview::archivedIndexes(IndexSet(3))), 0)) << "not chosen";
    EXPECT_FALSE(drop(carrying(farview::archivedIndexes(IndexSet(4))), 0)) << "no such row";
    EXPECT_FALSE(drop(
        carrying(farview::archivedIndexes(IndexSet(std::numeric_limits<std::int64_t>::min()))), 0));
    EXPECT_EQ(rows(), before);
}

TEST_F(PaneRowOrder, ARowDraggedWhileTheListIsRebuiltIsNotDropped)
{
    showExample();
    const auto drag = table().userDrags(2);
    ASSERT_TRUE(drag);
    announce({device("E", "e.local")});
    EXPECT_FALSE(table().mayDrop(*drag, 0));
    EXPECT_FALSE(table().userDrops(*drag, 0));
    EXPECT_EQ(rows(), (Texts{"*A", "*B", "*C", "D", "E"}));
}

TEST_F(PaneRowOrder, ARowThatIsUntickedWhileItIsDraggedIsNotDropped)
{
    showExample();
    const auto pasteboard = dragged(2);
    pane->setObjectValue(table(), false, kDevicesTableAutoConnectFlag, 2);
    const auto before = rows();
    EXPECT_FALSE(drop(pasteboard, 0));
    EXPECT_EQ(rows(), before);
}

TEST_F(PaneRowOrder, TheTableNeverKeepsASelection)
{
    showExample();
    table().userSelects(1);
    EXPECT_EQ(table().selectedRow(), -1);
    pane->tableViewSelectionIsChanging(farview::Notification("other", nullptr, {}));
    EXPECT_EQ(table().selectedRow(), -1);
}

TEST_F(PaneRowOrder, ABrokenFileOfSeenDevicesReadsAsEmptyAndIsSetAside)
{
    fake.fileManager.addFile(pane->seenDevicesFilename());
    showExample();
    hide();
    EXPECT_EQ(fake.fileManager.setAside(), Texts{pane->seenDevicesFilename()});
    EXPECT_EQ(seenDevices(), Texts{"D"});
}

} // namespace
