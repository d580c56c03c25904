#pragma once

#include "Common/Rules/FurtherDeviceRows.h"
#include "Controls/TableView.h"

#include <string>
#include <string_view>
#include <vector>

class FVEPreferencePane;

// The identifiers of the table's columns.
inline constexpr const char* kFurtherDevicesTableAlsoUse = "AlsoUse";
inline constexpr const char* kFurtherDevicesTableDeviceName = "DeviceName";
inline constexpr const char* kFurtherDevicesTableState = "State";
inline constexpr const char* kFurtherDevicesTableMayType = "MayType";

/// The list in which the user says which devices are used beside the first one and which of them
/// may type, and what the card says of the first one's typing. What is ticked is asked of the
/// server; the list shows what it answers. Main thread only. `pane` owns it.
class FurtherDevicesTable final : public farview::TableDataSource
{
public:
    explicit FurtherDevicesTable(FVEPreferencePane& pane) : mPane(pane) {}

    /// Shows what the server has reported; nothing while Farview is off.
    void show(bool isOn);

    int numberOfRowsInTableView(farview::TableView& table) override;
    farview::CellValue objectValueForTableColumn(farview::TableView& table, std::string_view column,
                                                 int row) override;
    void setObjectValue(farview::TableView& table, const farview::CellValue& value,
                        std::string_view column, int row) override;
    std::string remarkOnRow(farview::TableView& table, int row) override;

private:
    using Rows = std::vector<farview::FurtherDeviceRow>;

    farview::FurtherDeviceInputs inputs() const;
    void showRows(Rows rows);
    void showTypingOfFirst(bool mayBeAsked);
    /// Null when there is no such row.
    const farview::FurtherDeviceRow* rowAt(int row) const;

    FVEPreferencePane& mPane;
    Rows mRows;
};
