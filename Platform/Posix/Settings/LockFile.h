#pragma once

#include "Platform/Posix/FileDescriptor.h"

#include <chrono>
#include <string>

namespace farview
{

/// An exclusive lock between processes, held from `acquire` until destruction or the holder's end.
/// The file stays: only its owner can open it (0600), so nobody else can hold the lock.
class LockFile
{
public:
    /// Waits at most `patience`. Returns 0, or an errno: EWOULDBLOCK when another process held the
    /// lock all that time.
    int acquire(const std::string& path, std::chrono::milliseconds patience);

private:
    FileDescriptor mDescriptor;
};

} // namespace farview
