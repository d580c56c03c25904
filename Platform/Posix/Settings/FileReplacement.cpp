#include "Platform/Posix/Settings/FileReplacement.h"

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Posix/FolderListing.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>

namespace farview
{
namespace
{

bool isFolder(const std::string& path)
{
    struct stat status {
    };
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

int synchronizeFolder(const std::string& path)
{
    const FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen())
        return errno;
    // Some file systems cannot synchronize a folder; they have nothing to lose there.
    return ::fsync(folder.get()) == 0 || errno == EINVAL || errno == ENOTSUP ? 0 : errno;
}

/// A second name, or, where the file system or its rules know no second names, a new name. Never
/// takes the place of a file.
int nameAside(const std::string& path, const std::string& aside)
{
    if (::link(path.c_str(), aside.c_str()) == 0)
        return 0;
    if (errno == EEXIST)
        return EEXIST;
    const int result =
        ::renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE);
    return result == 0 ? 0 : errno;
}

/// Opens a file that no other process writes now. What stood in it is of no use to anyone.
FileDescriptor openAlone(const std::string& path, int flags)
{
    FileDescriptor file(
        ::open(path.c_str(), flags | O_WRONLY | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    struct stat opened {
    };
    struct stat named {
    };
    if (!file.isOpen() || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 ||
        ::fstat(file.get(), &opened) != 0 || ::lstat(path.c_str(), &named) != 0)
        return {};
    // Another writer may have given the file its final name before the lock was there.
    if (opened.st_ino == named.st_ino && opened.st_nlink == 1)
        return file;
    errno = EBUSY;
    return {};
}

} // namespace

std::string resolvedLink(const std::string& path)
{
    constexpr int mostLinks = 40;
    std::string current = path;
    for (int links = 0; links < mostLinks; ++links) {
        std::array<char, PATH_MAX> target{};
        const auto length = ::readlink(current.c_str(), target.data(), target.size());
        if (length < 0)
            return current;
        const std::string next(target.data(), static_cast<std::size_t>(length));
        current = next.starts_with('/') ? next : parentFolder(current).append("/").append(next);
    }
    return {};
}

int makeFolders(const std::string& path, mode_t mode)
{
    if (isFolder(path))
        return 0;
    const auto parent = parentFolder(path);
    if (parent != path) {
        if (const int error = makeFolders(parent, mode))
            return error;
    }
    if (::mkdir(path.c_str(), mode) != 0)
        return errno == EEXIST && isFolder(path) ? 0 : errno;
    if (::chmod(path.c_str(), mode) != 0)
        return errno;
    return synchronizeFolder(parent);
}

int setAsideFile(const std::string& path, std::string& asidePath)
{
    constexpr int mostAsides = 10000;
    for (int number = 1; number <= mostAsides; ++number) {
        asidePath = path + ".broken-" + std::to_string(number);
        const int error = nameAside(path, asidePath);
        if (error != EEXIST)
            return error;
    }
    return EEXIST;
}

FileReplacement::FileReplacement(std::string path, Durability durability)
    : mPath(std::move(path)), mDurability(durability)
{
}

FileReplacement::~FileReplacement()
{
    if (mFile.isOpen())
        ::unlink(mTemporaryPath.c_str());
}

int FileReplacement::openTemporary()
{
    constexpr int mostWritersAtOnce = 4;
    int error = 0;
    for (int number = 1; number <= mostWritersAtOnce; ++number) {
        const auto path = mPath + ".new-" + std::to_string(number);
        auto file = openAlone(path, mFile.isOpen() ? 0 : O_CREAT);
        if (!file.isOpen())
            error = errno;
        else if (mFile.isOpen())
            ::unlink(path.c_str()); // a killed writer left it
        else {
            mFile = std::move(file);
            mTemporaryPath = path;
        }
    }
    return mFile.isOpen() ? 0 : error;
}

int FileReplacement::write(std::string_view bytes, mode_t mode)
{
    if (const int error = openTemporary())
        return error;
    if (::ftruncate(mFile.get(), 0) != 0 || ::fchmod(mFile.get(), mode) != 0)
        return errno;
    if (const int error = writeAll(mFile.get(), bytes))
        return error;
    return mDurability == Durability::leftToTheSystem || ::fsync(mFile.get()) == 0 ? 0 : errno;
}

int FileReplacement::commit()
{
    if (::rename(mTemporaryPath.c_str(), mPath.c_str()) != 0)
        return errno;
    mFile = {};
    return mDurability == Durability::leftToTheSystem ? 0 : synchronizeFolder(parentFolder(mPath));
}

} // namespace farview
