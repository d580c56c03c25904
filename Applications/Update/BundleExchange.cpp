#include "Applications/Update/BundleExchange.h"

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Posix/FolderListing.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace farview
{
namespace
{

/// A forked process that puts the old bundle back when this one is killed between the two steps. A
/// fork of a process with threads may only make system calls.
class RestoringProcess
{
public:
    explicit RestoringProcess(const BundleExchange& exchange)
    {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0)
            return;
        const FileDescriptor awaited(ends[0]);
        mHeld = FileDescriptor(ends[1]);
        mProcess = ::fork();
        if (mProcess == 0)
            watch(ends, exchange.aside.c_str(), exchange.bundle.c_str());
    }
    ~RestoringProcess()
    {
        mHeld = {};
        if (mProcess > 0)
            ::waitpid(mProcess, nullptr, 0);
    }
    RestoringProcess(const RestoringProcess&) = delete;
    RestoringProcess& operator=(const RestoringProcess&) = delete;

private:
    [[noreturn]] static void watch(const int* ends, const char* aside, const char* bundle)
    {
        // A signal to the group of the other process must not end this one.
        ::setsid();
        ::close(ends[1]);
        char unused = 0;
        while (::read(ends[0], &unused, 1) < 0 && errno == EINTR) {
        }
        if (::access(bundle, F_OK) != 0)
            ::rename(aside, bundle);
        ::_exit(0);
    }

    FileDescriptor mHeld;
    pid_t mProcess = -1;
};

int synchronize(const std::string& folder, int (*how)(int))
{
    const FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return descriptor.isOpen() && how(descriptor.get()) == 0 ? 0 : errno;
}

bool isImpossible(int error) { return error == EINVAL || error == ENOSYS || error == ENOTSUP; }

} // namespace

RenameCalls::RenameCalls()
    : exchange([](const std::string& from, const std::string& to) {
          const int result =
              ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_EXCHANGE);
          return result == 0 ? 0 : errno;
      }),
      rename([](const std::string& from, const std::string& to) {
          return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
      })
{
}

int BundleExchange::replaceInTwoSteps(const RenameCalls& changes) const
{
    const RestoringProcess restoring(*this);
    if (const int error = changes.rename(bundle, aside))
        return error;
    const int error = changes.rename(replacement, bundle);
    if (error != 0)
        changes.rename(aside, bundle);
    return error;
}

std::optional<UpdateFailure> BundleExchange::run(const RenameCalls& changes) const
{
    // The files before the name: the name must not lead to what is not on the disk yet.
    if (const int error = synchronize(parentFolder(replacement), ::syncfs))
        return writeFailure(error, replacement);
    int error = changes.exchange(replacement, bundle);
    if (isImpossible(error))
        error = replaceInTwoSteps(changes);
    if (error != 0)
        return writeFailure(error, bundle);
    synchronize(parentFolder(bundle), ::fsync);
    return std::nullopt;
}

} // namespace farview
