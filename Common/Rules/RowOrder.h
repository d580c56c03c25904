#pragma once

#include "Common/Rules/AutoConnectRows.h"
#include "Platform/Types/IndexSet.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace farview
{

/// Whether a dragged row may land there: in a gap (not on a row) from above the first row to just
/// below the last chosen one.
bool dropAllowed(bool above, std::int64_t row, int chosenRows);

/// The rows after the one at `from` went into the gap above `to` (one past the end: below the
/// last). Nothing when there is no such row or gap.
std::optional<std::vector<DeviceRow>> movedRow(std::vector<DeviceRow> rows, std::int64_t from,
                                               std::int64_t to);

/// Whether the chosen rows stand otherwise than their stored names.
bool orderIsUnstored(const std::vector<DeviceRow>& rows, const PropertyList::Array& stored);

/// Row numbers as a keyed archive in the form of a property list, and back. Nothing for anything
/// that is no such archive: without an index, with more ranges than a table has rows, or with
/// numbers that no row has.
PropertyList archivedIndexes(const IndexSet& indexes);
std::optional<IndexSet> unarchivedIndexes(const PropertyList& archive);

} // namespace farview
