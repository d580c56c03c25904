#include "Common/GetPID.h"

#include "Platform/Platform.h"
#include "Platform/ProcessTable.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>
#include <vector>

using farview::ProcessRecord;
using farview::ProcessTable;

namespace
{

constexpr std::int32_t found = 0;
constexpr std::int32_t noneRuns = -1;
constexpr std::int32_t invalidArguments = -2;
constexpr std::int32_t tableUnreadable = -3;
constexpr std::int32_t noMemory = -4;
constexpr std::int32_t moreThanCapacity = -5;

using Records = std::vector<ProcessRecord>;

std::optional<Records> emptyRecords(std::size_t count)
{
    try {
        return Records(count);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    } catch (const std::length_error&) {
        return std::nullopt;
    }
}

struct Reading {
    std::int32_t status = found;
    std::int32_t error = 0;
    Records records;
};

Reading readTable(ProcessTable& table)
{
    // The table may outgrow the buffer between its two queries: then both are asked again.
    for (;;) {
        std::size_t count = 0;
        if (const int error = table.size(count))
            return {tableUnreadable, error, {}};
        auto records = emptyRecords(count);
        if (!records)
            return {noMemory, ENOMEM, {}};
        if (table.contents(*records, count) != 0)
            continue;
        records->resize(std::min(count, records->size()));
        return {found, 0, std::move(*records)};
    }
}

bool hasName(const ProcessRecord& record, const char* processName)
{
    return record.pid > 0 &&
           std::strncmp(record.shortName.data(), processName, record.shortName.size()) == 0;
}

std::int32_t collect(const Records& records, const char* processName, std::span<std::int32_t> pids,
                     std::uint32_t& matchCount)
{
    for (const auto& record : records) {
        if (!hasName(record, processName))
            continue;
        if (matchCount >= pids.size())
            return moreThanCapacity;
        pids[matchCount++] = record.pid;
    }
    return matchCount == 0 ? noneRuns : found;
}

} // namespace

std::int32_t GetAllPIDsForProcessName(const char* processName, std::int32_t* pids,
                                      std::uint32_t capacity, std::uint32_t* matchCount,
                                      std::int32_t* sysctlError)
{
    if (!processName || !pids || !matchCount || capacity == 0)
        return invalidArguments;
    const std::span<std::int32_t> results(pids, capacity);
    std::fill(results.begin(), results.end(), 0);
    *matchCount = 0;
    const Reading reading = readTable(*farview::Platform::current().processTable);
    if (sysctlError)
        *sysctlError = reading.error;
    if (reading.status != found)
        return reading.status;
    return collect(reading.records, processName, results, *matchCount);
}

std::int32_t GetPIDForProcessName(const char* processName)
{
    std::int32_t pid = 0;
    std::uint32_t count = 0;
    const auto status = GetAllPIDsForProcessName(processName, &pid, 1, &count, nullptr);
    return status == found && count == 1 ? pid : -1;
}
