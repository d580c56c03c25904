#pragma once

#include "Platform/ProcessTable.h"

#include <atomic>
#include <string>

namespace farview
{

/// The caller's own processes (those of the effective user) as "/proc" lists them, in its order.
///
/// Zombies are no running processes and are left out. A name that the kernel cut at 15 bytes is
/// completed to 16 from the executable's name when that begins with it. The size is counted once,
/// and again only after a failed read: counting is a good part of the time. A read that failed for
/// another reason than a table that grew fails the next query of the size with the same error.
/// Several threads may ask at once.
class PosixProcessTable final : public ProcessTable
{
public:
    PosixProcessTable() : PosixProcessTable("/proc") {}
    /// Reads another folder of the same shape.
    explicit PosixProcessTable(std::string root) : mRoot(std::move(root)) {}

    int size(std::size_t& recordCount) override;
    int contents(std::span<ProcessRecord> records, std::size_t& recordCount) override;

private:
    int read(std::span<ProcessRecord> records, std::size_t& recordCount) const;

    std::string mRoot;
    /// What the last count came to, with room for more; 0 when there has to be another.
    std::atomic<std::size_t> mRoom = 0;
    std::atomic<int> mReadError = 0; ///< of the last read, until it was told
};

} // namespace farview
