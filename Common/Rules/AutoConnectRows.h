#pragma once

#include "Platform/Types/PropertyList.h"

#include <cstddef>
#include <string>
#include <vector>

namespace farview
{

/// Where a row of the auto-connect table came from.
enum class DeviceOrderKind {
    chosen = 1, ///< the user's list of devices to connect to
    found = 2,  ///< on the network now
    seen = 3,   ///< remembered from earlier
};

/// One row of the auto-connect table. The name is a text, unless the stored list held something
/// else there.
struct DeviceRow {
    bool autoConnect = false;
    PropertyList name;
    DeviceOrderKind orderKind = DeviceOrderKind::chosen;
    bool onNetwork = false; ///< a device of that name is there now

    bool operator==(const DeviceRow&) const = default;
};

/// The rows in the table's order: chosen ones, then those found and not chosen, then those seen and
/// in neither. A name found twice gives two rows. Linear in the number of names.
std::vector<DeviceRow> autoConnectRows(const PropertyList::Array& chosen,
                                       const std::vector<std::string>& found,
                                       const PropertyList::Array& seen);

/// What is kept of the rows: the chosen names in their order, and every other name once.
struct StoredRows {
    PropertyList::Array chosen;
    PropertyList::Array seen;
};
StoredRows rowsToStore(const std::vector<DeviceRow>& rows);

/// Whether forgetting the row changes anything: a device that is on the network and not chosen
/// would be listed again at once.
bool mayForget(const DeviceRow& row);

/// The rows without any of that name.
std::vector<DeviceRow> rowsWithout(std::vector<DeviceRow> rows, const PropertyList& name);

/// A row that the user had forgotten, and where it stood.
struct ForgottenRow {
    DeviceRow row;
    std::size_t place = 0;
};

/// The rows with that one back where it stood, a chosen one among the chosen ones. As they are when
/// its name came back by itself meanwhile, unless only the forgotten row was chosen.
std::vector<DeviceRow> rowsWith(std::vector<DeviceRow> rows, const ForgottenRow& forgotten);

/// How many rows are chosen.
int countOfChosenRows(const std::vector<DeviceRow>& rows);

/// Whether choosing no device makes sense: not while auto-connection would undo it at once, because
/// the selected device is one of the chosen ones. `selectedName` is null when none is selected.
bool noDeviceEntryEnabled(bool autoConnectOption, bool connectedByAddress,
                          const std::string* selectedName, const PropertyList::Array& chosen);

} // namespace farview
