#include "Controls/Qt/Accessible/AccessibleWidgets.h"
#include "Controls/Qt/Table/TableWidget.h"
#include "Controls/TableView.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QAccessible>

namespace farview::test
{
namespace
{

/// Devices that can be ticked, of which the ticked ones can be moved.
class Devices : public TableDataSource
{
public:
    int numberOfRowsInTableView(TableView&) override { return static_cast<int>(names.size()); }
    CellValue objectValueForTableColumn(TableView&, std::string_view column, int row) override
    {
        const auto index = static_cast<std::size_t>(row);
        return column == "Flag" ? CellValue(bool(flags.at(index))) : CellValue(names.at(index));
    }
    void setObjectValue(TableView& table, const CellValue& value, std::string_view,
                        int row) override
    {
        flags.at(static_cast<std::size_t>(row)) = std::get<bool>(value);
        table.reloadData();
    }
    bool writeRowsWithIndexes(TableView&, const IndexSet& indexes, Pasteboard&) override
    {
        return flags.at(static_cast<std::size_t>(indexes.firstIndex()));
    }
    DragOperation validateDrop(TableView&, const DraggingInfo&, int, DropOperation) override
    {
        return DragOperation::move;
    }
    bool acceptDrop(TableView&, const DraggingInfo&, int gap, DropOperation) override
    {
        gaps.push_back(gap);
        return true;
    }
    bool mayDeleteRow(TableView&, int row) override { return row == 1; }
    void deleteRow(TableView&, int row) override { deleted.push_back(row); }
    bool mayUndoDelete(TableView&) override { return !deleted.empty(); }
    void undoDelete(TableView&) override { deleted.pop_back(); }
    void tableViewSelectionIsChanging(const Notification&) override {}

    std::vector<std::string> names = {"Tablet", "Phone"};
    std::vector<bool> flags = {true, false};
    std::vector<int> gaps;
    std::vector<int> deleted;
};

struct TableForAssistiveTechnology : testing::Test {
    TableForAssistiveTechnology()
    {
        installAccessibleWidgets();
        widget.setProperty("column1", "Flag");
        widget.setProperty("columnTitle1", "Connect");
        widget.setProperty("columnTicked1", "ticked");
        widget.setProperty("columnNotTicked1", "not ticked");
        widget.setProperty("column2", "Name");
        widget.setProperty("columnTitle2", "Device");
        widget.setProperty("moveUp", "Up");
        widget.setProperty("moveDown", "Down");
        widget.setProperty("deleteRow", "Forget");
        widget.setProperty("undoDelete", "Undo Forget");
        EXPECT_TRUE(bindToWidget(table, &widget));
        table->setDataSource(devices);
        widget.resize(300, 200);
        widget.show();
    }
    QAccessibleInterface* accessible() { return QAccessible::queryAccessibleInterface(&widget); }
    QAccessibleInterface* cell(int row, int column)
    {
        return accessible()->tableInterface()->cellAt(row, column);
    }
    static QString name(QAccessibleInterface* object) { return object->text(QAccessible::Name); }
    static QStringList actions(QAccessibleInterface* object)
    {
        return object->actionInterface()->actionNames();
    }

    std::shared_ptr<Devices> devices = std::make_shared<Devices>();
    TableWidget widget{nullptr};
    std::shared_ptr<TableView> table = std::make_shared<TableView>();
};

TEST_F(TableForAssistiveTechnology, TellsItsCellsAndTheirHeaders)
{
    EXPECT_EQ(accessible()->role(), QAccessible::Table);
    EXPECT_EQ(accessible()->tableInterface()->rowCount(), 2);
    EXPECT_EQ(name(cell(1, 1)), u"Phone"_qs);
    EXPECT_EQ(name(cell(0, 0)), u"Connect"_qs);
    EXPECT_EQ(cell(0, 0)->text(QAccessible::Description), u"ticked"_qs);
    EXPECT_TRUE(cell(0, 0)->state().checked);
    EXPECT_FALSE(cell(1, 0)->state().checked);
    EXPECT_EQ(name(cell(1, 1)->tableCellInterface()->columnHeaderCells().front()), u"Device"_qs);
    EXPECT_EQ(cell(2, 0), nullptr);
    EXPECT_EQ(cell(0, -1), nullptr);
}

TEST_F(TableForAssistiveTechnology, FindsEachPartByItsNumberAndItsPlace)
{
    for (int index = 0; index < accessible()->childCount(); ++index) {
        QAccessibleInterface* part = accessible()->child(index);
        ASSERT_NE(part, nullptr) << index;
        EXPECT_EQ(accessible()->indexOfChild(part), index);
        EXPECT_EQ(part->parent(), accessible());
    }
    EXPECT_EQ(accessible()->child(accessible()->childCount()), nullptr);
    const QPoint place = cell(1, 1)->rect().center();
    EXPECT_EQ(accessible()->childAt(place.x(), place.y()), cell(1, 1));
}

TEST_F(TableForAssistiveTechnology, LetsABoxBeTicked)
{
    EXPECT_TRUE(actions(cell(1, 0)).contains(QAccessibleActionInterface::toggleAction()));
    EXPECT_FALSE(actions(cell(1, 1)).contains(QAccessibleActionInterface::toggleAction()));
    cell(1, 0)->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    turn();
    EXPECT_TRUE(devices->flags[1]);
    EXPECT_TRUE(cell(1, 0)->state().checked);
}

TEST_F(TableForAssistiveTechnology, LetsARowBeMovedThatMay)
{
    EXPECT_FALSE(actions(cell(0, 1)).contains(u"Up"_qs));
    EXPECT_FALSE(actions(cell(1, 1)).contains(u"Down"_qs));
    cell(1, 1)->actionInterface()->doAction(u"Up"_qs);
    EXPECT_TRUE(devices->gaps.empty()) << "it is not ticked";
    cell(0, 1)->actionInterface()->doAction(u"Down"_qs);
    EXPECT_EQ(devices->gaps, std::vector<int>{2});
}

TEST_F(TableForAssistiveTechnology, WhatWasThereBeforeAReloadIsNotTakenForWhatIsThereNow)
{
    const QAccessible::Id before = QAccessible::uniqueId(cell(1, 1));
    devices->names = {"Phone"};
    devices->flags = {false};
    table->reloadData();
    turn();
    const QAccessibleInterface* old = QAccessible::accessibleInterface(before);
    EXPECT_TRUE(!old || !old->isValid());
    EXPECT_EQ(name(cell(0, 1)), u"Phone"_qs);
    EXPECT_EQ(cell(1, 1), nullptr);
}

TEST_F(TableForAssistiveTechnology, DisabledItOffersNothing)
{
    table->setEnabled(false);
    EXPECT_TRUE(actions(cell(0, 0)).isEmpty());
    cell(0, 0)->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(devices->flags[0]);
}

TEST_F(TableForAssistiveTechnology, LetsARowBeForgottenThatMayAndBroughtBack)
{
    EXPECT_FALSE(actions(cell(0, 1)).contains(u"Forget"_qs));
    EXPECT_FALSE(actions(cell(0, 1)).contains(u"Undo Forget"_qs)) << "nothing was forgotten";
    cell(0, 1)->actionInterface()->doAction(u"Forget"_qs);
    EXPECT_TRUE(devices->deleted.empty());
    cell(1, 1)->actionInterface()->doAction(u"Forget"_qs);
    EXPECT_EQ(devices->deleted, std::vector<int>{1});
    cell(0, 0)->actionInterface()->doAction(u"Undo Forget"_qs);
    EXPECT_TRUE(devices->deleted.empty());
}

} // namespace
} // namespace farview::test
