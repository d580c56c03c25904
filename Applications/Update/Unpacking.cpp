#include "Applications/Update/Unpacking.h"

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Posix/FolderListing.h"
#include "Platform/Posix/StandardErrorLog.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <utility>

namespace farview
{
namespace
{

constexpr mode_t plainFile = 0644;
constexpr mode_t program = 0755;
constexpr mode_t folder = 0755;
constexpr std::size_t longestShownText = 200;

UpdateFailure refusal(const std::string& what)
{
    return {UpdateProblem::archive, printableText(what, longestShownText)};
}

} // namespace

std::optional<std::string> innerPath(std::string_view path)
{
    if (path.ends_with('/'))
        path.remove_suffix(1);
    const std::string inner(path);
    do {
        const auto slash = path.find('/');
        if (!isPlainFileName(std::string(path.substr(0, slash))))
            return std::nullopt;
        path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
        if (slash != std::string_view::npos && path.empty())
            return std::nullopt;
    } while (!path.empty());
    return inner;
}

/// Reads the entries of the archive in memory, one after another.
class Unpacking::Reader
{
public:
    explicit Reader(std::string_view bytes) : mArchive(::archive_read_new())
    {
        ::archive_read_support_filter_xz(mArchive.get());
        ::archive_read_support_format_tar(mArchive.get());
        ::archive_read_open_memory(mArchive.get(), bytes.data(), bytes.size());
    }

    /// ARCHIVE_OK, ARCHIVE_EOF, or anything else for an archive that cannot be read.
    int next() { return ::archive_read_next_header(mArchive.get(), &mEntry); }
    la_ssize_t read(char* buffer, std::size_t size)
    {
        return ::archive_read_data(mArchive.get(), buffer, size);
    }
    std::string error() const
    {
        const char* text = ::archive_error_string(mArchive.get());
        return text ? text : "unreadable";
    }

    std::string path() const
    {
        const char* text = ::archive_entry_pathname(mEntry);
        return text ? text : "";
    }
    bool isFolder() const { return ::archive_entry_filetype(mEntry) == AE_IFDIR; }
    /// libarchive reports a hard link as a file.
    bool isFile() const
    {
        return ::archive_entry_filetype(mEntry) == AE_IFREG && !::archive_entry_hardlink(mEntry);
    }
    bool isProgram() const { return (::archive_entry_perm(mEntry) & S_IXUSR) != 0; }
    /// The size that it announces; 0 when it announces none.
    std::uint64_t size() const
    {
        const auto size = ::archive_entry_size(mEntry);
        return size > 0 ? static_cast<std::uint64_t>(size) : 0;
    }

private:
    struct EndArchive {
        void operator()(archive* archive) const { ::archive_read_free(archive); }
    };

    std::unique_ptr<archive, EndArchive> mArchive;
    archive_entry* mEntry = nullptr; ///< the archive's own
};

Unpacking::Unpacking(std::string folder, UnpackLimits limits, std::function<bool()> isCancelled)
    : mFolder(std::move(folder)), mLimits(limits), mIsCancelled(std::move(isCancelled))
{
}

std::optional<UpdateFailure> Unpacking::unpack(std::string_view archive)
{
    Reader reader(archive);
    int status = reader.next();
    for (; status == ARCHIVE_OK; status = reader.next()) {
        if (mIsCancelled())
            return UpdateFailure{UpdateProblem::internal, "cancelled"};
        if (auto failure = unpackEntry(reader))
            return failure;
    }
    if (status != ARCHIVE_EOF)
        return refusal(reader.error());
    return mTop.empty() ? std::optional(refusal("an empty archive")) : std::nullopt;
}

std::optional<UpdateFailure> Unpacking::unpackEntry(Reader& reader)
{
    if (++mEntries > mLimits.entries)
        return refusal("too many entries");
    if (!fits(reader.size()))
        return refusal("it announces more than it may hold");
    const auto inner = innerPath(reader.path());
    if (!inner || inner->size() > mLimits.pathLength || !takeTop(*inner))
        return refusal("a path that leads elsewhere: " + reader.path());
    const std::string path = mFolder + "/" + *inner;
    if (reader.isFile())
        return unpackFile(reader, path);
    if (!reader.isFolder())
        return refusal("neither file nor folder: " + reader.path());
    if (::mkdir(path.c_str(), folder) == 0)
        return std::nullopt;
    return errno == EEXIST ? refusal("a path twice: " + reader.path()) : writeFailure(errno, path);
}

/// Every path begins with the same folder.
bool Unpacking::takeTop(const std::string& path)
{
    const std::string top = path.substr(0, path.find('/'));
    if (mTop.empty())
        mTop = top;
    return mTop == top;
}

std::optional<UpdateFailure> Unpacking::unpackFile(Reader& reader, const std::string& path)
{
    const FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, plainFile));
    if (!file.isOpen()) {
        const bool isOfTheArchive = errno == EEXIST || errno == ENOENT || errno == ENOTDIR;
        return isOfTheArchive ? refusal("a file in the wrong place: " + reader.path())
                              : writeFailure(errno, path);
    }
    // The umask may have taken bits away.
    if (::fchmod(file.get(), reader.isProgram() ? program : plainFile) != 0)
        return writeFailure(errno, path);
    return copy(reader, file.get(), path);
}

std::optional<UpdateFailure> Unpacking::copy(Reader& reader, int descriptor,
                                             const std::string& path)
{
    std::array<char, 64 * 1024> buffer{};
    while (!mIsCancelled()) {
        const auto size = reader.read(buffer.data(), buffer.size());
        if (size < 0)
            return refusal(reader.error());
        if (size == 0)
            return std::nullopt;
        const std::string_view bytes(buffer.data(), static_cast<std::size_t>(size));
        // A sparse entry may announce one byte and put it behind a hole of any size.
        if (!fits(bytes.size()))
            return refusal("too large when it is unpacked");
        mBytes += bytes.size();
        if (const int error = writeAll(descriptor, bytes))
            return writeFailure(error, path);
    }
    return UpdateFailure{UpdateProblem::internal, "cancelled"};
}

} // namespace farview
