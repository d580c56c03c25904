#pragma once

#include "Platform/Posix/FileDescriptor.h"

#include <sys/types.h>

#include <string>
#include <string_view>

namespace farview
{

/// Where a path leads when its last part is a link, possibly to nothing; the path itself when it is
/// none. Empty for a loop of links.
std::string resolvedLink(const std::string& path);

/// Makes the folder and those missing above it, each with exactly `mode`, whatever the umask. A
/// folder that exists is left as it is. Returns 0, or an errno.
int makeFolders(const std::string& path, mode_t mode);

/// Gives the file at `path` a second name beside it, "path.broken-1" or the first number that is
/// free, so that replacing it loses nothing. Returns 0 and the name, or an errno.
int setAsideFile(const std::string& path, std::string& asidePath);

/// Whether a change is waited for until a power failure cannot take it back.
enum class Durability { waitedFor, leftToTheSystem };

/// Replaces a file in one step: a reader sees the old or the new contents, after a crash too.
///
/// write() puts the new contents into a file beside it, commit() gives them its name. Without
/// commit() nothing has changed. Of several writers the last to commit wins. What a killed writer
/// left beside the file goes with the next write().
class FileReplacement
{
public:
    explicit FileReplacement(std::string path, Durability durability = Durability::waitedFor);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// Contents with exactly this mode, as durable as wanted when it returns 0; else an errno.
    /// Once.
    int write(std::string_view bytes, mode_t mode);
    /// Returns 0 when the change is as durable as wanted, else an errno.
    int commit();

private:
    int openTemporary();

    std::string mPath;
    Durability mDurability;
    std::string mTemporaryPath;
    FileDescriptor mFile; ///< locked for as long as it is open
};

} // namespace farview
