#pragma once

#include "Controls/TableView.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

namespace farview::test
{

/// Devices that can be ticked, of which the ticked ones can be moved.
class Rows : public TableDataSource
{
public:
    int numberOfRowsInTableView(TableView&) override { return static_cast<int>(names.size()); }
    CellValue objectValueForTableColumn(TableView&, std::string_view column, int row) override
    {
        const auto index = static_cast<std::size_t>(row);
        ++asked;
        if (column == "AutoConnectFlag")
            return bool(flags.at(index));
        if (column == "DeviceName")
            return names.at(index);
        return {};
    }
    void setObjectValue(TableView& table, const CellValue& value, std::string_view column,
                        int row) override
    {
        edits.emplace_back(std::string(column), row, std::get<bool>(value));
        if (during)
            during(table);
    }
    bool writeRowsWithIndexes(TableView&, const IndexSet& indexes, Pasteboard&) override
    {
        return flags.at(static_cast<std::size_t>(indexes.firstIndex()));
    }
    DragOperation validateDrop(TableView&, const DraggingInfo&, int gap, DropOperation) override
    {
        return gap >= 0 && gap <= 2 ? DragOperation::move : DragOperation::none;
    }
    bool acceptDrop(TableView& table, const DraggingInfo&, int gap, DropOperation) override
    {
        drops.push_back(gap);
        table.noteNumberOfRowsChanged();
        table.reloadData();
        return true;
    }
    std::string remarkOnRow(TableView&, int row) override
    {
        return row == remarkable ? "Not here, <b>seen</b> before" : "";
    }
    bool mayDeleteRow(TableView&, int row) override { return row != immovable; }
    void deleteRow(TableView& table, int row) override
    {
        deleted.push_back(names.at(static_cast<std::size_t>(row)));
        names.erase(names.begin() + row);
        flags.erase(flags.begin() + row);
        table.reloadData();
    }
    bool mayUndoDelete(TableView&) override { return !deleted.empty(); }
    void undoDelete(TableView& table) override
    {
        names.push_back(deleted.back());
        flags.push_back(false);
        deleted.pop_back();
        table.reloadData();
    }
    void tableViewSelectionIsChanging(const Notification&) override {}

    int remarkable = -1;
    int immovable = -1;
    std::vector<std::string> deleted;
    int asked = 0;
    std::vector<int> drops;
    std::vector<std::string> names = {"Tablet", "<b>Phone</b>\t"};
    std::vector<bool> flags = {true, false};
    std::vector<std::tuple<std::string, int, bool>> edits;
    std::function<void(TableView&)> during;
};

/// A table of two devices, shown by a widget of that class.
template <typename Widget> struct TableFixture : testing::Test {
    TableFixture()
    {
        const std::pair<const char*, const char*> properties[] = {
            {"column1", "AutoConnectFlag"},
            {"columnTitle1", "Connect"},
            {"columnTicked1", "ticked"},
            {"columnNotTicked1", "not ticked"},
            {"column2", "DeviceName"},
            {"columnTitle2", "Device"},
            {"moveUp", "Up"},
            {"moveDown", "Down"},
            {"deleteRow", "Forget"},
            {"undoDelete", "Undo Forget"}};
        for (const auto& [name, value] : properties)
            widget.setProperty(name, value);
        EXPECT_TRUE(bindToWidget(table, &widget));
        table->setDataSource(rows);
    }

    std::shared_ptr<Rows> rows = std::make_shared<Rows>();
    Widget widget{nullptr};
    std::shared_ptr<TableView> table = std::make_shared<TableView>();
};

} // namespace farview::test
