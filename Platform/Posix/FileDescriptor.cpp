#include "Platform/Posix/FileDescriptor.h"

#include <sys/stat.h>

#include <cerrno>

namespace farview
{

int writeAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            return errno;
        bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return 0;
}

bool isOpenAt(const std::string& path, int descriptor)
{
    struct stat open {
    };
    struct stat named {
    };
    return ::fstat(descriptor, &open) == 0 && ::lstat(path.c_str(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

} // namespace farview
