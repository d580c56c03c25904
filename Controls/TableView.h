#pragma once

#include "Controls/Control.h"
#include "Controls/Pasteboard.h"
#include "Platform/Types/IndexSet.h"
#include "Platform/Types/Notification.h"

#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace farview
{

class TableView;

/// What one cell shows: nothing, a check box, or a text.
using CellValue = std::variant<std::monostate, bool, std::string>;

/// Gives a table its rows. Column identifiers are those of the interface file.
class TableDataSource
{
public:
    virtual ~TableDataSource() = default;
    virtual int numberOfRowsInTableView(TableView& table) = 0;
    virtual CellValue objectValueForTableColumn(TableView& table, std::string_view column,
                                                int row) = 0;
    /// The user edited a cell.
    virtual void setObjectValue(TableView& table, const CellValue& value, std::string_view column,
                                int row) = 0;
    /// A drag of these rows begins: puts them on the pasteboard, or refuses.
    virtual bool writeRowsWithIndexes(TableView& table, const IndexSet& indexes,
                                      Pasteboard& pasteboard) = 0;
    virtual DragOperation validateDrop(TableView& table, const DraggingInfo& info, int row,
                                       DropOperation operation) = 0;
    /// False when nothing was changed.
    virtual bool acceptDrop(TableView& table, const DraggingInfo& info, int row,
                            DropOperation operation) = 0;
    /// The notification's object is the table.
    virtual void tableViewSelectionIsChanging(const Notification& notification) = 0;
};

/// A table without a memory of its own: it asks its data source for what it shows.
class TableView : public Control
{
public:
    TableView() : mEnclosingScrollView(std::make_shared<View>()) {}

    /// The frame around the table, hidden and shown with it.
    View& enclosingScrollView() { return *mEnclosingScrollView; }

    std::weak_ptr<TableDataSource> dataSource() const { return mDataSource; }
    void setDataSource(std::weak_ptr<TableDataSource> source)
    {
        mDataSource = std::move(source);
        reloadData();
    }
    /// Says that the rows are no longer what they were.
    void reloadData() { changed(Change::rows); }
    /// Says that there are more rows, or fewer, than before.
    void noteNumberOfRowsChanged() { changed(Change::rows); }

    /// -1 when no row is selected.
    int selectedRow() const { return mSelectedRow; }
    void deselectAll(Object* /*sender*/) { mSelectedRow = -1; }

    /// The user's doors. A row is selected; its source is asked whether it stays so.
    void userSelects(int row);
    /// A row is carried into the gap above `gap`, by the same rules as one that is dragged. False
    /// when they forbid it.
    bool userMovesRow(int row, int gap);

    const std::vector<std::string>& draggedTypes() const { return mDraggedTypes; }
    void registerForDraggedTypes(std::vector<std::string> types)
    {
        mDraggedTypes = std::move(types);
    }

private:
    std::shared_ptr<View> mEnclosingScrollView;
    std::weak_ptr<TableDataSource> mDataSource;
    std::vector<std::string> mDraggedTypes;
    int mSelectedRow = -1;
};

} // namespace farview
