#include "Platform/Posix/WholeFile.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

namespace farview
{
namespace
{

bool isSame(const timespec& left, const timespec& right)
{
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

WholeFile failed(int error)
{
    WholeFile file;
    const bool isMissing = error == ENOENT || error == ENOTDIR;
    file.status = isMissing ? WholeFile::Status::missing : WholeFile::Status::unreadable;
    file.error = error;
    return file;
}

/// Fills `bytes` up to its size or the file's end. An errno, or 0.
int fill(int descriptor, std::string& bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const auto count = ::read(descriptor, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno != EINTR)
            return errno;
        if (count == 0)
            break;
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    bytes.resize(done);
    return 0;
}

/// Files of /proc claim to be empty, files of sysfs to fill a page.
std::size_t expectedSize(const struct stat& status, std::size_t limit)
{
    constexpr std::size_t largestOfUnknownSize = 1u << 16;
    const auto size = static_cast<std::size_t>(status.st_size);
    return size > 0 ? size : std::min(limit, largestOfUnknownSize);
}

} // namespace

FileIdentity FileIdentity::of(const struct stat& status)
{
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim, status.st_ctim};
}

std::optional<FileIdentity> FileIdentity::at(const std::string& path)
{
    struct stat status {
    };
    if (::stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return of(status);
}

bool FileIdentity::operator==(const FileIdentity& other) const
{
    return device == other.device && inode == other.inode && size == other.size &&
           isSame(modified, other.modified) && isSame(changed, other.changed);
}

WholeFile readWholeFile(const std::string& path, std::size_t limit)
{
    WholeFile file;
    file.descriptor = FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {
    };
    if (!file.descriptor.isOpen() || ::fstat(file.descriptor.get(), &status) != 0)
        return failed(errno);
    if (!S_ISREG(status.st_mode))
        return failed(S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    file.identity = FileIdentity::of(status);
    file.status = WholeFile::Status::tooLarge;
    if (static_cast<std::size_t>(status.st_size) > limit)
        return file;
    const auto expected = expectedSize(status, limit);
    // One byte more tells whether the file has grown meanwhile.
    file.bytes.resize(expected + 1);
    if (const int error = fill(file.descriptor.get(), file.bytes))
        return failed(error);
    if (file.bytes.size() <= expected)
        file.status = WholeFile::Status::read;
    return file;
}

} // namespace farview
