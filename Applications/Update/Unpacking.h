#pragma once

#include "Applications/Update/UpdateFailure.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace farview
{

/// How much an archive may hold.
struct UnpackLimits {
    std::uint64_t bytes = 512u << 20; ///< written for all files together
    std::size_t entries = 10000;
    std::size_t pathLength = 512;
};

/// Unpacks a compressed tar archive that holds one folder and in it files and folders only.
///
/// Refuses the whole archive, and leaves what it wrote until then to the caller, because of: links,
/// devices and all else that is no file or folder; absolute paths, "..", empty parts of a path; a
/// path twice; more than one folder at the top; more than the limits. Modes become 0755 or 0644.
class Unpacking
{
public:
    /// Unpacks into `folder`, which is empty and private to this process. `isCancelled` is called
    /// often; when it returns true, the unpacking ends.
    Unpacking(std::string folder, UnpackLimits limits, std::function<bool()> isCancelled);

    /// Returns nothing when all was unpacked. The failure after a cancellation means nothing.
    std::optional<UpdateFailure> unpack(std::string_view archive);
    /// The folder at the top, within `folder`.
    const std::string& top() const { return mTop; }

private:
    class Reader;

    std::optional<UpdateFailure> unpackEntry(Reader& reader);
    std::optional<UpdateFailure> unpackFile(Reader& reader, const std::string& path);
    std::optional<UpdateFailure> copy(Reader& reader, int descriptor, const std::string& path);
    bool fits(std::uint64_t more) const { return more <= mLimits.bytes - mBytes; }
    bool takeTop(const std::string& path);

    std::string mFolder;
    UnpackLimits mLimits;
    std::function<bool()> mIsCancelled;
    std::string mTop;
    std::uint64_t mBytes = 0; ///< written
    std::size_t mEntries = 0;
};

/// The path of an entry without a slash at its end; nothing when it leads out of the folder that
/// the archive is unpacked in.
std::optional<std::string> innerPath(std::string_view path);

} // namespace farview
