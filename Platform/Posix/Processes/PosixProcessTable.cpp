#include "Platform/Posix/Processes/PosixProcessTable.h"

#include "Platform/Posix/FileDescriptor.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

namespace farview
{
namespace
{

/// As many bytes of a name as the kernel keeps.
constexpr std::size_t longestKernelName = 15;
/// So many processes, and one for each so many counted, may be added before the next count.
constexpr std::size_t roomForMore = 16;
/// The table holds more than there is room for.
constexpr int outgrown = ENOMEM;

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

/// The number that fills the whole name; 0 when the name is none.
std::int32_t processNumber(const char* name)
{
    std::int32_t number = 0;
    const char* end = name + std::strlen(name);
    const auto result = std::from_chars(name, end, number);
    return result.ec == std::errc{} && result.ptr == end && number > 0 ? number : 0;
}

/// "12 (a name) S ...": the name may hold spaces and parentheses, what follows it does not.
struct Status {
    std::string_view name;
    char state = 0;
};

std::optional<Status> parseStatus(std::string_view line)
{
    const auto open = line.find('(');
    const auto close = line.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open ||
        close + 2 >= line.size())
        return std::nullopt;
    return Status{line.substr(open + 1, close - open - 1), line[close + 2]};
}

/// Whether something is lacking here, so that nothing is known of the process that was looked at.
bool isShortage(int error) { return error == EMFILE || error == ENFILE || error == ENOMEM; }

bool isRunning(char state) { return state != 'Z' && state != 'X' && state != 'x'; }

class Scan
{
public:
    int open(const std::string& root);
    /// The number of the next process, 0 at the end.
    std::int32_t next();
    /// Why the list ended, or a process could not be looked at; 0 when all is well.
    int error() const { return mError; }
    /// The process's record if it runs and is the caller's, and there is no error.
    std::optional<ProcessRecord> record(std::int32_t pid);

private:
    /// Puts "PID/file" into mPath.
    const char* path(std::int32_t pid, const char* file);
    bool isOwn(const FileDescriptor& statusFile, std::int32_t pid);
    std::string_view statusLine(const FileDescriptor& statusFile);
    std::string_view executableName(std::int32_t pid);

    Folder mFolder;
    uid_t mUser = ::geteuid();
    int mError = 0;
    std::string mPath;
    std::array<char, 512> mLine{};
    std::array<char, PATH_MAX> mExecutable{};
};

int Scan::open(const std::string& root)
{
    mFolder.reset(::opendir(root.c_str()));
    return mFolder ? 0 : errno;
}

std::int32_t Scan::next()
{
    errno = 0;
    while (const auto* entry = ::readdir(mFolder.get())) {
        if (const auto pid = processNumber(entry->d_name))
            return pid;
    }
    mError = errno;
    return 0;
}

const char* Scan::path(std::int32_t pid, const char* file)
{
    mPath = std::to_string(pid);
    return mPath.append(file).c_str();
}

/// The file of a process that keeps its memory private belongs to root: then only the folder tells.
/// Asking the open file first takes a tenth of the time.
bool Scan::isOwn(const FileDescriptor& statusFile, std::int32_t pid)
{
    struct stat status {
    };
    if (::fstat(statusFile.get(), &status) != 0)
        return false;
    if (status.st_uid != 0)
        return status.st_uid == mUser;
    return ::fstatat(::dirfd(mFolder.get()), path(pid, ""), &status, 0) == 0 &&
           status.st_uid == mUser;
}

std::string_view Scan::statusLine(const FileDescriptor& statusFile)
{
    const auto count = ::read(statusFile.get(), mLine.data(), mLine.size());
    return {mLine.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
}

std::string_view Scan::executableName(std::int32_t pid)
{
    constexpr std::string_view deleted = " (deleted)";
    const auto length = ::readlinkat(::dirfd(mFolder.get()), path(pid, "/exe"), mExecutable.data(),
                                     mExecutable.size());
    std::string_view name(mExecutable.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
    if (name.ends_with(deleted))
        name.remove_suffix(deleted.size());
    return name.substr(name.rfind('/') + 1);
}

std::optional<ProcessRecord> Scan::record(std::int32_t pid)
{
    const FileDescriptor file(
        ::openat(::dirfd(mFolder.get()), path(pid, "/stat"), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen())
        mError = isShortage(errno) ? errno : 0;
    if (!file.isOpen() || !isOwn(file, pid))
        return std::nullopt;
    const auto status = parseStatus(statusLine(file));
    if (!status || !isRunning(status->state))
        return std::nullopt;
    std::string_view name = status->name;
    if (name.size() == longestKernelName) {
        const auto executable = executableName(pid);
        name = executable.starts_with(name) ? executable : name;
    }
    ProcessRecord record;
    record.pid = pid;
    std::copy_n(name.begin(), std::min(name.size(), record.shortName.size()),
                record.shortName.begin());
    return record;
}

} // namespace

int PosixProcessTable::size(std::size_t& recordCount)
{
    // The caller asks for the size after each failed read, without end: it must hear of it here.
    if (const int error = mReadError.exchange(0))
        return error;
    Scan scan;
    if (const int error = scan.open(mRoot))
        return error;
    if (mRoom == 0) {
        std::size_t count = 0;
        while (scan.next() != 0)
            ++count;
        if (scan.error() != 0)
            return scan.error();
        mRoom = count + count / roomForMore + roomForMore;
    }
    recordCount = mRoom;
    return 0;
}

int PosixProcessTable::contents(std::span<ProcessRecord> records, std::size_t& recordCount)
{
    const int error = read(records, recordCount);
    if (error != 0)
        mRoom = 0;
    mReadError = error == outgrown ? 0 : error;
    return error;
}

int PosixProcessTable::read(std::span<ProcessRecord> records, std::size_t& recordCount) const
{
    Scan scan;
    if (const int error = scan.open(mRoot))
        return error;
    std::size_t count = 0;
    while (const auto pid = scan.next()) {
        const auto record = scan.record(pid);
        if (scan.error() != 0)
            return scan.error();
        if (!record)
            continue;
        if (count == records.size())
            return outgrown;
        records[count++] = *record;
    }
    if (scan.error() == 0)
        recordCount = count;
    return scan.error();
}

} // namespace farview
