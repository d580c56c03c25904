#include "Applications/Update/Staging.h"

#include "Platform/Posix/FolderListing.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace farview
{
namespace
{

constexpr mode_t ownerOnly = S_IRWXU;
/// A further attempt is needed when another run removed the folder just then.
constexpr int mostAttempts = 10;

std::string stagingPathFor(const std::filesystem::path& bundle)
{
    return (bundle.parent_path() / ("." + bundle.filename().string() + ".update")).string();
}

} // namespace

Staging::Staging(std::string bundle) : mBundle(std::move(bundle)), mPath(stagingPathFor(mBundle)) {}

Staging::~Staging() { release(); }

std::optional<UpdateFailure> Staging::openOwn()
{
    if (::mkdir(mPath.c_str(), ownerOnly) != 0 && errno != EEXIST)
        return writeFailure(errno, mPath);
    mFolder =
        FileDescriptor(::open(mPath.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!mFolder.isOpen())
        return errno == ENOENT ? std::nullopt : std::optional(writeFailure(errno, mPath));
    struct stat status {
    };
    // Another user could change what lies in it.
    if (::fstat(mFolder.get(), &status) != 0 || status.st_uid != ::geteuid() ||
        (status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        return UpdateFailure{UpdateProblem::write, mPath + " is not private"};
    return std::nullopt;
}

std::optional<UpdateFailure> Staging::lock()
{
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        if (auto failure = openOwn())
            return failure;
        if (!mFolder.isOpen())
            continue;
        if (::flock(mFolder.get(), LOCK_EX | LOCK_NB) != 0)
            break;
        // The run that held the lock before has removed its folder.
        if (isOpenAt(mPath, mFolder.get()))
            return std::nullopt;
    }
    return UpdateFailure{UpdateProblem::busy, "another update of this bundle is running"};
}

std::optional<UpdateFailure> Staging::acquire()
{
    auto failure = tryToAcquire();
    if (failure && failure->problem != UpdateProblem::busy && clearPath())
        failure = tryToAcquire();
    if (failure)
        mFolder = {};
    return failure;
}

std::optional<UpdateFailure> Staging::tryToAcquire()
{
    if (auto failure = lock())
        return failure;
    if (!isAnythingAt(mBundle) && isAnythingAt(asidePath()) &&
        ::rename(asidePath().c_str(), mBundle.c_str()) != 0)
        return writeFailure(errno, mBundle);
    for (const auto& name : namesInFolder(mPath)) {
        std::error_code error;
        std::filesystem::remove_all(mPath + "/" + name, error);
        if (error)
            return writeFailure(error.value(), mPath + "/" + name);
    }
    return std::nullopt;
}

/// Removes what lies at the path or, when that fails, renames it, so that it does not hold up every
/// later update. Does nothing while the only copy of the bundle may be in it.
bool Staging::clearPath() const
{
    if (!isAnythingAt(mBundle))
        return false;
    std::error_code error;
    std::filesystem::remove_all(mPath, error);
    if (!error)
        return true;
    std::string other = mPath + ".XXXXXX";
    return ::mkdtemp(other.data()) && ::rename(mPath.c_str(), other.c_str()) == 0;
}

std::optional<UpdateFailure> Staging::removeLeftovers()
{
    if (!isAnythingAt(mPath))
        return std::nullopt;
    auto failure = acquire();
    release();
    return failure;
}

void Staging::release()
{
    if (!mFolder.isOpen())
        return;
    // The lock is held until the folder is gone.
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
    mFolder = {};
}

} // namespace farview
