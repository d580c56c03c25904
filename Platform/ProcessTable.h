#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace farview
{

/// One running process: its identifier and its short name, NUL-terminated when shorter than 16
/// bytes.
struct ProcessRecord {
    std::int32_t pid = 0;
    std::array<char, 16> shortName{};
};

/// The processes that run now, as two separate queries that can each fail.
class ProcessTable
{
public:
    virtual ~ProcessTable() = default;

    /// How many records to make room for: at least as many as the table holds. Returns 0, or an
    /// errno.
    virtual int size(std::size_t& recordCount) = 0;
    /// Reads the table into `records`; `recordCount` becomes the number read. Returns 0, or an
    /// errno; ENOMEM when the table has outgrown `records`.
    virtual int contents(std::span<ProcessRecord> records, std::size_t& recordCount) = 0;
};

} // namespace farview
