#include "Source/FVEAutoConnectTable.h"

#include "Common/FVEPreferences.h"
#include "Common/NSString_Additions.h"
#include "Common/Rules/RowOrder.h"
#include "Platform/FileManager.h"
#include "Platform/Platform.h"

#include <utility>

using farview::CellValue;
using farview::DeviceRow;
using farview::DraggingInfo;
using farview::DragOperation;
using farview::DropOperation;
using farview::IndexSet;
using farview::PairedPeer;
using farview::PairedPeers;
using farview::Pasteboard;
using farview::PropertyList;
using farview::TableView;

namespace
{

/// What the table shows for a name; a stored name that is no text shows as an empty one.
std::string shownName(const PropertyList& name)
{
    if (const auto* text = name.get<std::string>())
        return *text;
    if (const auto* number = name.get<std::int64_t>())
        return std::to_string(*number);
    return {};
}

} // namespace

FVEAutoConnectTable::FVEAutoConnectTable(farview::Platform& platform)
    : FVEPreferencePaneProperties(platform), mFiles(*platform.fileManager),
      mPeers(*platform.preferences, PairedPeers::devices)
{
}

std::string FVEAutoConnectTable::applicationSupportFolder()
{
    return applicationSupportPath() + "/" + kFVEApplicationSupportFolderName;
}

std::string FVEAutoConnectTable::seenDevicesFilename() const
{
    return applicationSupportFolder() + "/" + kSeenDevicesForAutoConnectTableFilename;
}

int FVEAutoConnectTable::countOfCheckedDevices() const
{
    return farview::countOfChosenRows(autoConnectDevices());
}

void FVEAutoConnectTable::buildDeviceList()
{
    const auto chosen = FVEPreferences::sharedAppPrefs().autoConnectDevices();
    std::vector<std::string> found;
    found.reserve(listedServices().size());
    for (const auto& service : listedServices())
        found.push_back(service->name());
    const auto file = mFiles.propertyListWithContentsOfFile(seenDevicesFilename());
    const auto* seen = file ? file->get<PropertyList::Array>() : nullptr;
    setAutoConnectDevices(
        farview::autoConnectRows(chosen, found, seen ? *seen : PropertyList::Array{}));
    mListWasBuilt = true;
    autoConnectTable()->reloadData();
    showWhetherOrderIsStored();
}

void FVEAutoConnectTable::writeDeviceList()
{
    // A pane that was closed before it built its list knows of no device, and must not say so.
    if (!mListWasBuilt)
        return;
    const auto stored = farview::rowsToStore(autoConnectDevices());
    mFiles.createDirectoryAtPath(applicationSupportFolder());
    mFiles.writePropertyList(stored.seen, seenDevicesFilename());
    FVEPreferences::sharedAppPrefs().setAutoConnectDevices(stored.chosen);
    showWhetherOrderIsStored();
}

void FVEAutoConnectTable::storeRows(Rows rows)
{
    setAutoConnectDevices(std::move(rows));
    writeDeviceList();
    buildDeviceList();
}

void FVEAutoConnectTable::autoConnectPressed(farview::Object* sender)
{
    const auto* checkBox = dynamic_cast<farview::Button*>(sender);
    if (!checkBox)
        return;
    const bool on = checkBox->state() == 1;
    showAutoConnectTable(on);
    autoConnectTable()->reloadData();
    FVEPreferences::sharedAppPrefs().setAutoConnectOption(on);
}

void FVEAutoConnectTable::autoConnectAllPressed(farview::Object* /*sender*/)
{
    FVEPreferences::sharedAppPrefs().setAutoConnectAllDevices(autoConnectAll()->state() == 1);
}

void FVEAutoConnectTable::showAutoConnectTable(bool shown)
{
    autoConnectAll()->setEnabled(shown);
    autoConnectTable()->setEnabled(shown);
    autoConnectTable()->enclosingScrollView().setHidden(!shown);
    autoConnectTable()->setHidden(!shown);
    showWhetherOrderIsStored();
}

int FVEAutoConnectTable::numberOfRowsInTableView(TableView& /*table*/)
{
    return autoConnect() && autoConnect()->state() == 1
               ? static_cast<int>(autoConnectDevices().size())
               : 0;
}

const DeviceRow* FVEAutoConnectTable::rowAt(std::int64_t row) const
{
    const auto& rows = autoConnectDevices();
    const bool exists = row >= 0 && static_cast<std::size_t>(row) < rows.size();
    return exists ? &rows[static_cast<std::size_t>(row)] : nullptr;
}

bool FVEAutoConnectTable::isChosenRow(std::int64_t row) const
{
    const auto* device = rowAt(row);
    return device && device->autoConnect;
}

CellValue FVEAutoConnectTable::objectValueForTableColumn(TableView& /*table*/,
                                                         std::string_view column, int row)
{
    const auto* device = rowAt(row);
    if (device && column == kDevicesTableAutoConnectFlag)
        return device->autoConnect;
    if (device && column == kDevicesTableDeviceName)
        return shownName(device->name);
    return {};
}

std::string FVEAutoConnectTable::remarkOnRow(TableView& /*table*/, int row)
{
    const auto* device = rowAt(row);
    if (!device || device->onNetwork)
        return {};
    return localized(device->orderKind == farview::DeviceOrderKind::seen
                         ? "Seen before, not on the network now"
                         : "Not on the network now");
}

void FVEAutoConnectTable::setObjectValue(TableView& table, const CellValue& value,
                                         std::string_view column, int row)
{
    const auto* flag = std::get_if<bool>(&value);
    if (column != kDevicesTableAutoConnectFlag || !flag || !rowAt(row))
        return;
    auto rows = autoConnectDevices();
    rows[static_cast<std::size_t>(row)].autoConnect = *flag;
    storeRows(std::move(rows));
    table.reloadData();
}

bool FVEAutoConnectTable::mayDeleteRow(TableView& /*table*/, int row)
{
    const auto* device = rowAt(row);
    return device && (farview::mayForget(*device) || !confirmedDevices(device->name).empty());
}

std::vector<PairedPeer> FVEAutoConnectTable::confirmedDevices(const PropertyList& name) const
{
    auto peers = mPeers.all();
    std::erase_if(peers, [&](const PairedPeer& peer) {
        return peer.name.empty() || PropertyList(peer.name) != name;
    });
    return peers;
}

// As a tick does, this stores the order on show too. The tick goes first, or the server would ask
// for the device to be confirmed anew.
void FVEAutoConnectTable::deleteRow(TableView& table, int row)
{
    if (!mayDeleteRow(table, row))
        return;
    const auto device = *rowAt(row);
    mForgotten.push_back({{device, static_cast<std::size_t>(row)}, confirmedDevices(device.name)});
    storeRows(farview::rowsWithout(autoConnectDevices(), device.name));
    if (!mForgotten.back().confirmed.empty())
        connection().forgetDevice(shownName(device.name));
}

bool FVEAutoConnectTable::mayUndoDelete(TableView& /*table*/) { return !mForgotten.empty(); }

void FVEAutoConnectTable::undoDelete(TableView& /*table*/)
{
    if (mForgotten.empty())
        return;
    const auto last = std::move(mForgotten.back());
    mForgotten.pop_back();
    // Whoever was confirmed under that name meanwhile stays.
    if (confirmedDevices(last.row.row.name).empty()) {
        for (const auto& peer : last.confirmed)
            mPeers.add(peer);
    }
    storeRows(farview::rowsWith(autoConnectDevices(), last.row));
}

bool FVEAutoConnectTable::writeRowsWithIndexes(TableView& /*table*/, const IndexSet& indexes,
                                               Pasteboard& pasteboard)
{
    if (!isChosenRow(indexes.firstIndex()))
        return false;
    pasteboard.declareTypes({kDeviceNameTableViewDataType});
    return pasteboard.setPropertyList(farview::archivedIndexes(indexes),
                                      kDeviceNameTableViewDataType);
}

DragOperation FVEAutoConnectTable::validateDrop(TableView& /*table*/, const DraggingInfo& /*info*/,
                                                int row, DropOperation operation)
{
    const bool above = operation == DropOperation::above;
    return farview::dropAllowed(above, row, countOfCheckedDevices()) ? DragOperation::move
                                                                     : DragOperation::none;
}

bool FVEAutoConnectTable::acceptDrop(TableView& table, const DraggingInfo& info, int row,
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

void FVEAutoConnectTable::showWhetherOrderIsStored()
{
    const bool unstored =
        mListWasBuilt &&
        farview::orderIsUnstored(autoConnectDevices(),
                                 FVEPreferences::sharedAppPrefs().autoConnectDevices());
    orderHintLabel()->setHidden(!unstored || autoConnectTable()->isHidden());
}

void FVEAutoConnectTable::tableViewSelectionIsChanging(const farview::Notification& notification)
{
    if (autoConnectTable() && notification.object() == autoConnectTable().get())
        autoConnectTable()->deselectAll(nullptr);
}
