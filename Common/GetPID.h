#pragma once

#include <cstdint>

/// Finds the running processes whose short name equals the first 16 bytes of `processName`.
///
/// Fills `pids` (zeroed first) in table order and sets `matchCount`. Returns 0: found; -1: none
/// runs; -2: an argument is null or `capacity` is 0, nothing was written; -3: the process table
/// cannot be read, `sysctlError` (may be null) tells the errno; -4: no memory (`sysctlError` 12);
/// -5: more than `capacity` run, the first ones are in `pids`. Several threads may call it at once.
std::int32_t GetAllPIDsForProcessName(const char* processName, std::int32_t* pids,
                                      std::uint32_t capacity, std::uint32_t* matchCount,
                                      std::int32_t* sysctlError);

/// The identifier of the one process of that name; -1 when none, or more than one, runs.
std::int32_t GetPIDForProcessName(const char* processName);
