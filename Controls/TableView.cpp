#include "Controls/TableView.h"

namespace farview
{

void TableView::userSelects(int row)
{
    mSelectedRow = row;
    const auto self = shared_from_this();
    if (const auto source = mDataSource.lock())
        source->tableViewSelectionIsChanging(
            Notification("NSTableViewSelectionIsChangingNotification", this, {}));
}

bool TableView::userMovesRow(int row, int gap)
{
    const auto self = shared_from_this();
    const auto source = mDataSource.lock();
    if (!source || !isEnabled() || row < 0 || row >= source->numberOfRowsInTableView(*this))
        return false;
    const auto pasteboard = std::make_shared<Pasteboard>();
    if (!source->writeRowsWithIndexes(*this, IndexSet(row), *pasteboard))
        return false;
    const DraggingInfo info(pasteboard);
    return source->validateDrop(*this, info, gap, DropOperation::above) != DragOperation::none &&
           source->acceptDrop(*this, info, gap, DropOperation::above);
}

} // namespace farview
