#include "Source/FurtherDevicesTable.h"

#include "Common/Bonjour/DeviceState.h"
#include "Common/FVEPreferences.h"
#include "Source/FVEPreferencePane.h"

#include <utility>

using farview::CellValue;
using farview::FurtherDeviceRow;
using farview::TableView;

void FurtherDevicesTable::show(bool isOn)
{
    auto& connection = mPane.connection();
    const auto inWords = [this](const std::string& text) { return mPane.localized(text); };
    const bool takesInput = isOn && FVEPreferences::sharedAppPrefs().enableTouchDisplay();
    Rows rows = isOn ? furtherDeviceRows(inputs(), inWords) : Rows();
    for (auto& row : rows) {
        if (takesInput && !row.key.empty())
            row.mayType = connection.mayType(row.key);
    }
    showRows(std::move(rows));
    showTypingOfFirst(takesInput && !connection.deviceKey().empty());
    const auto text = isOn ? typingText(mPane.connectedName().value_or(""), connection.screen(),
                                        connection.furtherDevices(), inWords)
                           : std::string();
    mPane.typingLabel()->setStringValue(text);
    mPane.typingLabel()->setHidden(text.empty());
}

farview::FurtherDeviceInputs FurtherDevicesTable::inputs() const
{
    farview::FurtherDeviceInputs inputs;
    for (const auto& service : mPane.listedServices()) {
        if (const auto hostName = service->hostName())
            inputs.inSight.push_back(
                {*hostName, service->name(), farview::isDeviceInUse(*service)});
    }
    const auto& first = mPane.selectedNetService();
    inputs.isConnected = first || mPane.connectedToOtherDevice();
    if (first)
        inputs.firstHostName = first->hostName().value_or(std::string{});
    inputs.used = mPane.connection().furtherDevices();
    return inputs;
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
