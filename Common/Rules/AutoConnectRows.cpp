#include "Common/Rules/AutoConnectRows.h"

#include <algorithm>
#include <functional>
#include <unordered_set>

namespace farview
{
namespace
{

std::size_t hashOf(const PropertyList& list);

std::size_t combined(std::size_t seed, std::size_t hash) { return seed * 31 + hash; }

struct ValueHash {
    template <typename Value> std::size_t operator()(const Value& value) const
    {
        return std::hash<Value>{}(value);
    }
    std::size_t operator()(const Data& data) const { return (*this)(data.text()); }
    std::size_t operator()(const Date& date) const { return (*this)(date.secondsSince1970); }
    std::size_t operator()(const PropertyList::Array& array) const
    {
        std::size_t hash = array.size();
        for (const auto& element : array)
            hash = combined(hash, hashOf(element));
        return hash;
    }
    std::size_t operator()(const PropertyList::Dictionary& dictionary) const
    {
        std::size_t hash = dictionary.size();
        for (const auto& [key, value] : dictionary)
            hash = combined(combined(hash, (*this)(key)), hashOf(value));
        return hash;
    }
};

std::size_t hashOf(const PropertyList& list)
{
    return combined(list.value().index(), std::visit(ValueHash{}, list.value()));
}

struct NameHash {
    std::size_t operator()(const PropertyList& name) const { return hashOf(name); }
};
// Names are texts as a rule, but a stored list may hold anything and is kept as it is.
using NameSet = std::unordered_set<PropertyList, NameHash>;

} // namespace

std::vector<DeviceRow> autoConnectRows(const PropertyList::Array& chosen,
                                       const std::vector<std::string>& found,
                                       const PropertyList::Array& seen)
{
    std::vector<DeviceRow> rows;
    rows.reserve(chosen.size() + found.size() + seen.size());
    const NameSet foundNames(found.begin(), found.end());
    for (const auto& name : chosen)
        rows.push_back({true, name, DeviceOrderKind::chosen, foundNames.contains(name)});
    const NameSet chosenNames(chosen.begin(), chosen.end());
    NameSet known = chosenNames;
    for (const auto& name : found) {
        if (chosenNames.contains(name))
            continue;
        rows.push_back({false, name, DeviceOrderKind::found, true});
        known.insert(name);
    }
    for (const auto& name : seen) {
        if (!known.contains(name))
            rows.push_back({false, name, DeviceOrderKind::seen, false});
    }
    return rows;
}

StoredRows rowsToStore(const std::vector<DeviceRow>& rows)
{
    StoredRows stored;
    NameSet taken;
    for (const auto& row : rows) {
        if (!row.autoConnect)
            continue;
        stored.chosen.push_back(row.name);
        taken.insert(row.name);
    }
    for (const auto& row : rows) {
        if (taken.insert(row.name).second)
            stored.seen.push_back(row.name);
    }
    return stored;
}

bool mayForget(const DeviceRow& row) { return row.autoConnect || !row.onNetwork; }

std::vector<DeviceRow> rowsWithout(std::vector<DeviceRow> rows, const PropertyList& name)
{
    std::erase_if(rows, [&](const DeviceRow& row) { return row.name == name; });
    return rows;
}

std::vector<DeviceRow> rowsWith(std::vector<DeviceRow> rows, const ForgottenRow& forgotten)
{
    const auto& back = forgotten.row;
    const bool isListed = std::any_of(rows.begin(), rows.end(), [&](const DeviceRow& row) {
        return row.name == back.name && (row.autoConnect || !back.autoConnect);
    });
    if (isListed)
        return rows;
    const auto chosen = static_cast<std::size_t>(countOfChosenRows(rows));
    const auto place = back.autoConnect ? std::min(forgotten.place, chosen)
                                        : std::clamp(forgotten.place, chosen, rows.size());
    rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(place), back);
    return rows;
}

int countOfChosenRows(const std::vector<DeviceRow>& rows)
{
    return static_cast<int>(
        std::count_if(rows.begin(), rows.end(), [](const auto& row) { return row.autoConnect; }));
}

bool noDeviceEntryEnabled(bool autoConnectOption, bool connectedByAddress,
                          const std::string* selectedName, const PropertyList::Array& chosen)
{
    if (connectedByAddress || !autoConnectOption || !selectedName)
        return true;
    return std::find(chosen.begin(), chosen.end(), PropertyList(*selectedName)) == chosen.end();
}

} // namespace farview
