#include "Common/Rules/RowOrder.h"

#include <algorithm>

namespace farview
{
namespace
{

using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;

constexpr std::int64_t archiveVersion = 100000;
constexpr const char* archiverName = "NSKeyedArchiver";
constexpr std::int64_t largestIndex = 1'000'000'000;
constexpr std::size_t mostRanges = 10'000;
// "$null", the index set and its class.
constexpr std::size_t objectCount = 3;

PropertyList reference(int object) { return Dictionary{{"CF$UID", object}}; }

const PropertyList* member(const PropertyList* list, const char* key)
{
    const auto* dictionary = list ? list->get<Dictionary>() : nullptr;
    if (!dictionary)
        return nullptr;
    const auto found = dictionary->find(key);
    return found == dictionary->end() ? nullptr : &found->second;
}

std::optional<std::int64_t> number(const PropertyList* list)
{
    const auto* value = list ? list->get<std::int64_t>() : nullptr;
    return value ? std::optional(*value) : std::nullopt;
}

/// The object that the archive's root refers to.
const PropertyList* rootObject(const PropertyList& archive)
{
    const auto* archiver = member(&archive, "$archiver");
    const auto* list = member(&archive, "$objects");
    const auto* objects = list ? list->get<Array>() : nullptr;
    const auto root = number(member(member(member(&archive, "$top"), "root"), "CF$UID"));
    if (!archiver || *archiver != PropertyList(archiverName) || !objects || !root ||
        number(member(&archive, "$version")) != archiveVersion || objects->size() != objectCount)
        return nullptr;
    const bool exists = *root > 0 && *root < static_cast<std::int64_t>(objects->size());
    return exists ? &(*objects)[static_cast<std::size_t>(*root)] : nullptr;
}

std::optional<IndexSet::Range> range(const PropertyList& list, std::int64_t afterwards)
{
    const auto location = number(member(&list, "NSLocation"));
    const auto length = number(member(&list, "NSLength"));
    if (!location || !length || *location < afterwards || *location > largestIndex || *length < 1 ||
        *length > largestIndex)
        return std::nullopt;
    return IndexSet::Range{*location, *length};
}

} // namespace

bool dropAllowed(bool above, std::int64_t row, int chosenRows)
{
    return above && row >= 0 && row <= chosenRows;
}

std::optional<std::vector<DeviceRow>> movedRow(std::vector<DeviceRow> rows, std::int64_t from,
                                               std::int64_t to)
{
    const auto count = static_cast<std::int64_t>(rows.size());
    if (from < 0 || from >= count || to < 0 || to > count)
        return std::nullopt;
    const auto begin = rows.begin();
    if (from >= to)
        std::rotate(begin + to, begin + from, begin + from + 1);
    else
        std::rotate(begin + from, begin + from + 1, begin + to);
    return rows;
}

bool orderIsUnstored(const std::vector<DeviceRow>& rows, const PropertyList::Array& stored)
{
    auto next = stored.begin();
    for (const auto& row : rows) {
        if (!row.autoConnect)
            continue;
        if (next == stored.end() || *next != row.name)
            return true;
        ++next;
    }
    return next != stored.end();
}

PropertyList archivedIndexes(const IndexSet& indexes)
{
    Array ranges;
    for (const auto& each : indexes.ranges())
        ranges.emplace_back(Dictionary{{"NSLocation", each.location}, {"NSLength", each.length}});
    const Dictionary set{{"$class", reference(2)}, {"NSRanges", ranges}};
    const Dictionary kind{{"$classname", "NSIndexSet"},
                          {"$classes", Array{"NSIndexSet", "NSObject"}}};
    return Dictionary{{"$version", archiveVersion},
                      {"$archiver", archiverName},
                      {"$top", Dictionary{{"root", reference(1)}}},
                      {"$objects", Array{"$null", set, kind}}};
}

std::optional<IndexSet> unarchivedIndexes(const PropertyList& archive)
{
    const auto* list = member(rootObject(archive), "NSRanges");
    const auto* stored = list ? list->get<Array>() : nullptr;
    if (!stored || stored->empty() || stored->size() > mostRanges)
        return std::nullopt;
    std::vector<IndexSet::Range> ranges;
    std::int64_t afterwards = 0;
    for (const auto& each : *stored) {
        const auto found = range(each, afterwards);
        if (!found)
            return std::nullopt;
        afterwards = found->location + found->length + 1;
        ranges.push_back(*found);
    }
    return IndexSet(std::move(ranges));
}

} // namespace farview
