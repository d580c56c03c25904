#include "Source/FurtherDevicesTable.h"

#include "Common/FVEPreferences.h"
#include "Source/FVEPreferencePane.h"

#include <optional>
#include <utility>

using farview::CellValue;
using farview::FurtherDeviceRow;
using farview::TableView;

void FurtherDevicesTable::show(bool isOn)
{
    auto& connection = mPane.connection();
    const bool takesInput = isOn && FVEPreferences::sharedAppPrefs().enableTouchDisplay();
    Rows rows = isOn ? rowsOnShow() : Rows();
    for (auto& row : rows) {
        if (takesInput && !row.key.empty())
            row.mayType = connection.mayType(row.key);
    }
    showRows(std::move(rows));
    showTypingOfFirst(takesInput && !connection.deviceKey().empty());
    showWhoTypes(isOn);
}

FurtherDevicesTable::Rows FurtherDevicesTable::rowsOnShow() const
{
    std::optional<std::string> first;
    if (mPane.selectedNetService() || mPane.connectedToOtherDevice())
        first = mPane.selectedNetService() ? mPane.selectedNetService()->hostName().value_or("")
                                           : std::string();
    return mPane.connection().furtherDeviceRows(
        mPane.listedServices(), first, [this](const auto& text) { return mPane.localized(text); });
}

void FurtherDevicesTable::showWhoTypes(bool isOn)
{
    auto& connection = mPane.connection();
    const auto lines = typingLines(mPane.connectedName().value_or(""), connection.screen(),
                                   connection.furtherDevices(),
                                   [this](const auto& text) { return mPane.localized(text); });
    mPane.typingLabel()->setStringValue(farview::joinedLines(lines));
    mPane.typingLabel()->setHidden(!isOn || lines.empty());
}

void FurtherDevicesTable::showRows(Rows rows)
{
    mPane.furtherDevicesTable()->setHidden(rows.empty());
    if (rows == mRows)
        return;
    mRows = std::move(rows);
    mPane.furtherDevicesTable()->reloadData();
}

void FurtherDevicesTable::showTypingOfFirst(bool mayBeAsked)
{
    auto& connection = mPane.connection();
    mPane.mayTypeBox()->setHidden(!mayBeAsked);
    mPane.mayTypeCheckbox()->setState(mayBeAsked && connection.mayType(connection.deviceKey()));
}

int FurtherDevicesTable::numberOfRowsInTableView(TableView& /*table*/)
{
    return static_cast<int>(mRows.size());
}

const FurtherDeviceRow* FurtherDevicesTable::rowAt(int row) const
{
    const bool exists = row >= 0 && static_cast<std::size_t>(row) < mRows.size();
    return exists ? &mRows[static_cast<std::size_t>(row)] : nullptr;
}

CellValue FurtherDevicesTable::objectValueForTableColumn(TableView& /*table*/,
                                                         std::string_view column, int row)
{
    const auto* device = rowAt(row);
    if (!device)
        return {};
    if (column == kFurtherDevicesTableAlsoUse)
        return device->isUsed;
    if (column == kFurtherDevicesTableDeviceName)
        return device->name;
    if (column == kFurtherDevicesTableState)
        return device->state;
    return device->mayType ? CellValue(*device->mayType) : CellValue();
}

void FurtherDevicesTable::setObjectValue(TableView& /*table*/, const CellValue& value,
                                         std::string_view column, int row)
{
    const auto* flag = std::get_if<bool>(&value);
    const auto* device = rowAt(row);
    if (!flag || !device)
        return;
    if (column == kFurtherDevicesTableMayType)
        mPane.connection().letType(device->key, *flag);
    else if (*flag)
        mPane.connection().alsoConnectToHost(device->hostName);
    else
        mPane.connection().leaveFurtherDevice(device->hostName);
}

std::string FurtherDevicesTable::remarkOnRow(TableView& /*table*/, int row)
{
    const auto* device = rowAt(row);
    return device ? device->trouble : std::string();
}
