#include "Controls/TableView.h"

namespace farview
{

void TableView::reloadData()
{
    ++mRowsState;
    changed(Change::rows);
}

void TableView::userSelects(int row)
{
    mSelectedRow = row;
    const auto self = shared_from_this();
    if (const auto source = mDataSource.lock())
        source->tableViewSelectionIsChanging(
            Notification("NSTableViewSelectionIsChangingNotification", this, {}));
}

std::optional<RowDrag> TableView::userDrags(int row)
{
    const auto self = shared_from_this();
    const auto source = mDataSource.lock();
    if (!source || !isEnabled() || row < 0 || row >= source->numberOfRowsInTableView(*this))
        return std::nullopt;
    const auto pasteboard = std::make_shared<Pasteboard>();
    if (!source->writeRowsWithIndexes(*this, IndexSet(row), *pasteboard))
        return std::nullopt;
    return RowDrag{row, pasteboard, mRowsState};
}

bool TableView::mayDrop(const RowDrag& drag, int gap)
{
    const auto self = shared_from_this();
    const auto source = mDataSource.lock();
    if (!source || !isEnabled() || drag.rowsState != mRowsState)
        return false;
    return source->validateDrop(*this, DraggingInfo(drag.pasteboard), gap, DropOperation::above) !=
           DragOperation::none;
}

bool TableView::userDrops(const RowDrag& drag, int gap)
{
    const auto self = shared_from_this();
    const auto source = mDataSource.lock();
    return mayDrop(drag, gap) &&
           source->acceptDrop(*this, DraggingInfo(drag.pasteboard), gap, DropOperation::above);
}

bool TableView::userMayDelete(int row)
{
    const auto self = shared_from_this();
    const auto source = mDataSource.lock();
    return source && isEnabled() && row >= 0 && row < source->numberOfRowsInTableView(*this) &&
           source->mayDeleteRow(*this, row);
}

bool TableView::userDeletes(int row)
{
    const auto self = shared_from_this();
    const auto source = mDataSource.lock();
    if (!userMayDelete(row))
        return false;
    source->deleteRow(*this, row);
    return true;
}

bool TableView::userMayUndoDelete()
{
    const auto self = shared_from_this();
    const auto source = mDataSource.lock();
    return source && isEnabled() && source->mayUndoDelete(*this);
}

bool TableView::userUndoesDelete()
{
    const auto self = shared_from_this();
    const auto source = mDataSource.lock();
    if (!userMayUndoDelete())
        return false;
    source->undoDelete(*this);
    return true;
}

bool TableView::userMovesRow(int row, int gap)
{
    const auto drag = userDrags(row);
    return drag && userDrops(*drag, gap);
}

} // namespace farview
