#include "Common/FVEPreferences.h"
#include "Common/Rules/RowOrder.h"
#include "Source/DevicesTable.h"
#include "Source/FVEPreferencePane.h"

using farview::DraggingInfo;
using farview::DragOperation;
using farview::DropOperation;
using farview::IndexSet;
using farview::Pasteboard;
using farview::TableView;

bool FVEPreferencePane::isChosenRow(std::int64_t row) const
{
    return row >= 0 && row < static_cast<std::int64_t>(autoConnectDevices().size()) &&
           autoConnectDevices()[static_cast<std::size_t>(row)].autoConnect;
}

bool FVEPreferencePane::writeRowsWithIndexes(TableView& /*table*/, const IndexSet& indexes,
                                             Pasteboard& pasteboard)
{
    if (!isChosenRow(indexes.firstIndex()))
        return false;
    pasteboard.declareTypes({kDeviceNameTableViewDataType});
    return pasteboard.setPropertyList(farview::archivedIndexes(indexes),
                                      kDeviceNameTableViewDataType);
}

DragOperation FVEPreferencePane::validateDrop(TableView& /*table*/, const DraggingInfo& /*info*/,
                                              int row, DropOperation operation)
{
    const bool above = operation == DropOperation::above;
    return farview::dropAllowed(above, row, countOfCheckedDevices()) ? DragOperation::move
                                                                     : DragOperation::none;
}

bool FVEPreferencePane::acceptDrop(TableView& table, const DraggingInfo& info, int row,
                                   DropOperation operation)
{
    const auto archive =
        info.draggingPasteboard().propertyListForType(kDeviceNameTableViewDataType);
    const auto indexes = archive ? farview::unarchivedIndexes(*archive) : std::nullopt;
    // The list may have been rebuilt since the drag began, and a pasteboard may hold anything.
    if (!indexes || !isChosenRow(indexes->firstIndex()) ||
        validateDrop(table, info, row, operation) == DragOperation::none)
        return false;
    auto moved = farview::movedRow(autoConnectDevices(), indexes->firstIndex(), row);
    if (!moved)
        return false;
    setAutoConnectDevices(std::move(*moved));
    table.noteNumberOfRowsChanged();
    table.reloadData();
    showWhetherOrderIsStored();
    return true;
}

void FVEPreferencePane::showWhetherOrderIsStored()
{
    const bool unstored =
        mListWasBuilt &&
        farview::orderIsUnstored(autoConnectDevices(),
                                 FVEPreferences::sharedAppPrefs().autoConnectDevices());
    orderHintLabel()->setHidden(!unstored || autoConnectTable()->isHidden());
}

void FVEPreferencePane::tableViewSelectionIsChanging(const farview::Notification& notification)
{
    if (autoConnectTable() && notification.object() == autoConnectTable().get())
        autoConnectTable()->deselectAll(this);
}
