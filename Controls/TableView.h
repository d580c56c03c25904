#pragma once

#include "Controls/Control.h"
#include "Controls/Pasteboard.h"
#include "Platform/Types/IndexSet.h"
#include "Platform/Types/Notification.h"

#include <cstdint>
#include <memory>
#include <optional>
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
    virtual bool writeRowsWithIndexes(TableView& /*table*/, const IndexSet& /*indexes*/,
                                      Pasteboard& /*pasteboard*/)
    {
        return false;
    }
    virtual DragOperation validateDrop(TableView& /*table*/, const DraggingInfo& /*info*/,
                                       int /*row*/, DropOperation /*operation*/)
    {
        return DragOperation::none;
    }
    /// False when nothing was changed.
    virtual bool acceptDrop(TableView& /*table*/, const DraggingInfo& /*info*/, int /*row*/,
                            DropOperation /*operation*/)
    {
        return false;
    }
    /// Whether the user may take the row off the list, and may have the last one taken back.
    virtual bool mayDeleteRow(TableView& /*table*/, int /*row*/) { return false; }
    virtual void deleteRow(TableView& /*table*/, int /*row*/) {}
    virtual bool mayUndoDelete(TableView& /*table*/) { return false; }
    virtual void undoDelete(TableView& /*table*/) {}
    /// What is to be told of a row beside its cells, in the user's language. Such a row stands back
    /// behind the others. Empty: there is nothing to tell.
    virtual std::string remarkOnRow(TableView& /*table*/, int /*row*/) { return {}; }
    /// The notification's object is the table.
    virtual void tableViewSelectionIsChanging(const Notification& /*notification*/) {}
};

/// A row on its way to another place.
struct RowDrag {
    int row = -1;
    std::shared_ptr<const Pasteboard> pasteboard;
    /// The state of the table's rows that it was taken from.
    std::uint64_t rowsState = 0;
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
    void reloadData();
    /// Says that there are more rows, or fewer, than before.
    void noteNumberOfRowsChanged() { reloadData(); }
    /// Another number after each of these.
    std::uint64_t rowsState() const { return mRowsState; }

    /// -1 when no row is selected.
    int selectedRow() const { return mSelectedRow; }
    void deselectAll(Object* /*sender*/) { mSelectedRow = -1; }

    /// The user's doors. A row is selected; its source is asked whether it stays so.
    void userSelects(int row);
    /// A row is picked up. Nothing when it must stay where it is.
    std::optional<RowDrag> userDrags(int row);
    /// Whether it may be put into the gap above `gap`: never when the rows are no longer those it
    /// was taken from.
    bool mayDrop(const RowDrag& drag, int gap);
    /// It is put there. False when nothing was changed.
    bool userDrops(const RowDrag& drag, int gap);
    /// All of this at once.
    bool userMovesRow(int row, int gap);

    /// A row is taken off the list. False when it must stay.
    bool userMayDelete(int row);
    bool userDeletes(int row);
    /// The row that was taken off last comes back. False when there is none.
    bool userMayUndoDelete();
    bool userUndoesDelete();

    const std::vector<std::string>& draggedTypes() const { return mDraggedTypes; }
    void registerForDraggedTypes(std::vector<std::string> types)
    {
        mDraggedTypes = std::move(types);
    }

private:
    std::shared_ptr<View> mEnclosingScrollView;
    std::weak_ptr<TableDataSource> mDataSource;
    std::vector<std::string> mDraggedTypes;
    std::uint64_t mRowsState = 0;
    int mSelectedRow = -1;
};

} // namespace farview
