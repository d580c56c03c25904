#pragma once

#include "Common/FVEConstants.h"
#include "Common/PairedPeers.h"
#include "Common/Rules/AutoConnectRows.h"
#include "Source/FVEPreferencePaneProperties.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace farview
{
class FileManager;
struct Platform;
} // namespace farview

// The identifiers of the table's columns, which are the keys of its rows too, and what its rows are
// dragged as.
inline constexpr const char* kDevicesTableAutoConnectFlag = "AutoConnectFlag";
inline constexpr const char* kDevicesTableDeviceName = "DeviceName";
inline constexpr const char* kDevicesTableDeviceOrderKind = "DeviceOrderKind";
inline constexpr const char* kDeviceNameTableViewDataType = "DeviceNameTableViewDataType";

/// The part of the pane that keeps the auto-connect table: which devices the server connects to by
/// itself and in which order, and which others are remembered. Main thread only.
class FVEAutoConnectTable : public FVEPreferencePaneProperties, public farview::TableDataSource
{
public:
    static std::string applicationSupportFolder();
    std::string seenDevicesFilename() const;
    int countOfCheckedDevices() const;
    /// Reads the rows anew from the settings, the network and the file of seen devices.
    void buildDeviceList();
    void writeDeviceList();
    void autoConnectPressed(farview::Object* sender);
    void autoConnectAllPressed(farview::Object* sender);

    int numberOfRowsInTableView(farview::TableView& table) override;
    farview::CellValue objectValueForTableColumn(farview::TableView& table, std::string_view column,
                                                 int row) override;
    void setObjectValue(farview::TableView& table, const farview::CellValue& value,
                        std::string_view column, int row) override;
    bool writeRowsWithIndexes(farview::TableView& table, const farview::IndexSet& indexes,
                              farview::Pasteboard& pasteboard) override;
    farview::DragOperation validateDrop(farview::TableView& table,
                                        const farview::DraggingInfo& info, int row,
                                        farview::DropOperation operation) override;
    bool acceptDrop(farview::TableView& table, const farview::DraggingInfo& info, int row,
                    farview::DropOperation operation) override;
    bool mayDeleteRow(farview::TableView& table, int row) override;
    void deleteRow(farview::TableView& table, int row) override;
    bool mayUndoDelete(farview::TableView& table) override;
    void undoDelete(farview::TableView& table) override;
    std::string remarkOnRow(farview::TableView& table, int row) override;
    void tableViewSelectionIsChanging(const farview::Notification& notification) override;

    /// That text in the user's language.
    virtual std::string localized(const std::string& text) const = 0;

protected:
    /// `platform` must outlive the table.
    explicit FVEAutoConnectTable(farview::Platform& platform);

    void showAutoConnectTable(bool shown);

private:
    struct Forgotten {
        farview::ForgottenRow row;
        std::vector<farview::PairedPeer> confirmed; ///< the devices of that name
    };

    /// Null when there is no such row.
    const farview::DeviceRow* rowAt(std::int64_t row) const;
    bool isChosenRow(std::int64_t row) const;
    void storeRows(Rows rows);
    void showWhetherOrderIsStored();
    /// The devices of that name that the user has confirmed.
    std::vector<farview::PairedPeer> confirmedDevices(const farview::PropertyList& name) const;

    farview::FileManager& mFiles;
    farview::PairedPeers mPeers;
    bool mListWasBuilt = false;
    std::vector<Forgotten> mForgotten; ///< the last one is the first to come back
};
