#pragma once

#include "Platform/Posix/FileDescriptor.h"

#include <sys/stat.h>

#include <cstddef>
#include <optional>
#include <string>

namespace farview
{

/// Tells whether a path still leads to the same contents. Only reliable while the file is kept
/// open: file systems give the number of a removed file to the next one at once.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    timespec modified{};
    timespec changed{};

    static FileIdentity of(const struct stat& status);
    /// What the path (after following links) leads to now; nothing when that is no file.
    static std::optional<FileIdentity> at(const std::string& path);
    bool operator==(const FileIdentity& other) const;
};

/// A file read from its beginning to its end.
struct WholeFile {
    enum class Status { read, missing, tooLarge, unreadable };

    Status status = Status::missing;
    int error = 0; ///< errno of an unreadable file
    std::string bytes;
    FileDescriptor descriptor; ///< still open, unless the file is missing or unreadable
    FileIdentity identity;     ///< as it was before the first byte was read
};

/// Never waits for another process: pipes and other special files are unreadable. `tooLarge`: it
/// has more than `limit` bytes and was not read.
WholeFile readWholeFile(const std::string& path, std::size_t limit);

} // namespace farview
