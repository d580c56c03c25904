#include "Platform/Posix/Settings/LockFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <thread>

namespace farview
{
namespace
{

using Clock = std::chrono::steady_clock;

int openLock(const std::string& path, FileDescriptor& descriptor)
{
    constexpr mode_t mode = S_IRUSR | S_IWUSR;
    constexpr int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
    descriptor = FileDescriptor(::open(path.c_str(), flags, mode));
    if (!descriptor.isOpen())
        return errno;
    struct stat status {
    };
    if (::fstat(descriptor.get(), &status) != 0)
        return errno;
    // The umask may have taken bits away, and an older file may have too many.
    if ((status.st_mode & 07777) != mode && ::fchmod(descriptor.get(), mode) != 0)
        return errno;
    return 0;
}

/// There is no lock call with a time-out, so this asks again, ever more slowly.
int lockBefore(int descriptor, Clock::time_point deadline)
{
    using namespace std::chrono_literals;
    constexpr Clock::duration longestPause = 8ms;
    Clock::duration pause = 250us;
    while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return errno;
        const auto left = deadline - Clock::now();
        if (left <= Clock::duration::zero())
            return EWOULDBLOCK;
        std::this_thread::sleep_for(std::min(pause, left));
        pause = std::min(2 * pause, longestPause);
    }
    return 0;
}

} // namespace

int LockFile::acquire(const std::string& path, std::chrono::milliseconds patience)
{
    const auto deadline = Clock::now() + patience;
    do {
        FileDescriptor descriptor;
        if (const int error = openLock(path, descriptor))
            return error;
        if (const int error = lockBefore(descriptor.get(), deadline))
            return error;
        // Somebody may have cleaned up.
        if (isOpenAt(path, descriptor.get())) {
            mDescriptor = std::move(descriptor);
            return 0;
        }
    } while (Clock::now() < deadline);
    return EWOULDBLOCK;
}

} // namespace farview
