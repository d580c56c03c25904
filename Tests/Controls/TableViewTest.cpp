#include "Controls/TableView.h"

#include "Tests/Controls/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::CellValue;
using farview::Change;
using farview::DraggingInfo;
using farview::DragOperation;
using farview::DropOperation;
using farview::IndexSet;
using farview::Notification;
using farview::Object;
using farview::Pasteboard;
using farview::PropertyList;
using farview::TableView;
using testing::ElementsAre;

namespace
{

class Rows : public farview::TableDataSource
{
public:
    int numberOfRowsInTableView(TableView&) override { return 3; }
    CellValue objectValueForTableColumn(TableView&, std::string_view, int) override { return {}; }
    void setObjectValue(TableView&, const CellValue&, std::string_view, int) override {}
    bool writeRowsWithIndexes(TableView&, const IndexSet& rows, Pasteboard& pasteboard) override
    {
        pasteboard.declareTypes({"row"});
        return rows.firstIndex() != 2 && pasteboard.setPropertyList(rows.firstIndex(), "row");
    }
    DragOperation validateDrop(TableView&, const DraggingInfo&, int gap, DropOperation) override
    {
        return gap < 3 ? DragOperation::move : DragOperation::none;
    }
    bool acceptDrop(TableView&, const DraggingInfo& info, int gap, DropOperation) override
    {
        moves.emplace_back(*info.draggingPasteboard().propertyListForType("row"), gap);
        return true;
    }
    bool mayDeleteRow(TableView&, int row) override { return row != 2; }
    void deleteRow(TableView&, int row) override { deleted.push_back(row); }
    bool mayUndoDelete(TableView&) override { return !deleted.empty(); }
    void undoDelete(TableView&) override { deleted.pop_back(); }
    void tableViewSelectionIsChanging(const Notification& notification) override
    {
        selectedTable = notification.object();
    }

    std::vector<std::pair<PropertyList, int>> moves;
    std::vector<int> deleted;
    const Object* selectedTable = nullptr;
};

TEST(TableView, TellsThatItsRowsAreNoLongerWhatTheyWere)
{
    const auto table = std::make_shared<TableView>();
    const auto rows = std::make_shared<Rows>();
    const ChangeCounter told(*table);
    table->setDataSource(rows);
    table->reloadData();
    EXPECT_THAT(told.changes, ElementsAre(Change::rows, Change::rows));
    EXPECT_EQ(table->dataSource().lock(), rows);
}

TEST(TableView, ARowIsMovedByTheSameRulesAsADraggedOne)
{
    const auto table = std::make_shared<TableView>();
    const auto rows = std::make_shared<Rows>();
    table->setDataSource(rows);
    EXPECT_TRUE(table->userMovesRow(0, 2));
    EXPECT_THAT(rows->moves, ElementsAre(std::pair(PropertyList(0), 2)));
    EXPECT_FALSE(table->userMovesRow(2, 0)) << "it may not be dragged";
    EXPECT_FALSE(table->userMovesRow(0, 3)) << "it may not be dropped there";
    EXPECT_FALSE(table->userMovesRow(-1, 0));
    EXPECT_FALSE(table->userMovesRow(3, 0));
    table->setEnabled(false);
    EXPECT_FALSE(table->userMovesRow(0, 2));
    EXPECT_EQ(rows->moves.size(), 1u);
}

TEST(TableView, ARowThatWasPickedUpFromAnOlderStateIsNotPutDown)
{
    const auto table = std::make_shared<TableView>();
    const auto rows = std::make_shared<Rows>();
    table->setDataSource(rows);
    for (const bool number : {false, true}) {
        const auto drag = table->userDrags(0);
        ASSERT_TRUE(drag);
        EXPECT_TRUE(table->mayDrop(*drag, 2));
        number ? table->noteNumberOfRowsChanged() : table->reloadData();
        EXPECT_FALSE(table->mayDrop(*drag, 2));
        EXPECT_FALSE(table->userDrops(*drag, 2));
    }
    EXPECT_TRUE(rows->moves.empty());
    EXPECT_TRUE(table->userMovesRow(0, 2)) << "the next one is of today's rows";
}

TEST(TableView, WhatIsPickedUpIsNotPutDownOnATableThatIsDisabledOrAlone)
{
    const auto table = std::make_shared<TableView>();
    auto rows = std::make_shared<Rows>();
    table->setDataSource(rows);
    const auto drag = table->userDrags(0);
    ASSERT_TRUE(drag);
    table->setEnabled(false);
    EXPECT_FALSE(table->mayDrop(*drag, 2));
    table->setEnabled(true);
    rows.reset();
    EXPECT_FALSE(table->userDrops(*drag, 2));
    EXPECT_FALSE(table->userDrags(0));
}

TEST(TableView, AsksWhetherARowStaysSelected)
{
    const auto table = std::make_shared<TableView>();
    const auto rows = std::make_shared<Rows>();
    table->setDataSource(rows);
    table->userSelects(1);
    EXPECT_EQ(rows->selectedTable, table.get());
    EXPECT_EQ(table->selectedRow(), 1);
    table->deselectAll(nullptr);
    EXPECT_EQ(table->selectedRow(), -1);
}

TEST(Pasteboard, CarriesOnlyWhatWasDeclared)
{
    Pasteboard pasteboard;
    EXPECT_FALSE(pasteboard.setPropertyList("x", "row"));
    pasteboard.declareTypes({"row"});
    EXPECT_EQ(pasteboard.propertyListForType("row"), std::nullopt);
    EXPECT_TRUE(pasteboard.setPropertyList("x", "row"));
    EXPECT_EQ(pasteboard.propertyListForType("row"), PropertyList("x"));
    EXPECT_THAT(pasteboard.types(), ElementsAre("row"));
    pasteboard.declareTypes({"other"});
    EXPECT_EQ(pasteboard.propertyListForType("row"), std::nullopt);
}

TEST(TableView, ARowIsTakenOffOnlyWhereItsSourceAllowsItAndComesBack)
{
    const auto table = std::make_shared<TableView>();
    auto rows = std::make_shared<Rows>();
    table->setDataSource(rows);
    EXPECT_FALSE(table->userUndoesDelete()) << "there is nothing to take back";
    for (const int row : {-1, 2, 3})
        EXPECT_FALSE(table->userDeletes(row)) << row;
    EXPECT_TRUE(table->userDeletes(1));
    table->setEnabled(false);
    EXPECT_FALSE(table->userDeletes(1));
    EXPECT_FALSE(table->userUndoesDelete());
    table->setEnabled(true);
    EXPECT_THAT(rows->deleted, ElementsAre(1));
    EXPECT_TRUE(table->userUndoesDelete());
    EXPECT_THAT(rows->deleted, testing::IsEmpty());
    rows.reset();
    EXPECT_FALSE(table->userDeletes(1));
    EXPECT_FALSE(table->userUndoesDelete());
}

} // namespace
