#include "Applications/Update/BundleFacts.h"

#include "Common/Rules/VersionOrder.h"
#include "Platform/Posix/FolderListing.h"
#include "Platform/Posix/PropertyLists/PropertyListFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace farview
{
namespace
{

/// In a folder like /tmp only the owner may give a file another name.
bool mayRenameIn(const std::string& folder, const std::string& path)
{
    struct stat folderStatus {
    };
    struct stat status {
    };
    if (::stat(folder.c_str(), &folderStatus) != 0 || ::lstat(path.c_str(), &status) != 0)
        return false;
    const auto user = ::geteuid();
    return (folderStatus.st_mode & S_ISVTX) == 0 || user == 0 || user == status.st_uid ||
           user == folderStatus.st_uid;
}

} // namespace

std::optional<BundleFacts> readBundleFacts(const std::string& path)
{
    const auto file = readDictionaryFile(path + "/Contents/Info.plist");
    if (!file.list)
        return std::nullopt;
    const auto& info = *file.list->get<PropertyList::Dictionary>();
    BundleFacts facts{textFor(info, "CFBundleIdentifier"), textFor(info, "CFBundleVersion"),
                      textFor(info, "SUFeedURL"), textFor(info, "SUPublicEDKey")};
    if (!isVersion(facts.version))
        facts.version.clear();
    return facts;
}

std::string canonicalPath(const std::string& path)
{
    std::error_code error;
    auto own = std::filesystem::weakly_canonical(path, error);
    if (error)
        own = path;
    // "Name/" is the folder "Name".
    return (own.has_filename() ? own : own.parent_path()).string();
}

bool mayReplaceBundle(const std::string& path)
{
    const auto folder = parentFolder(path);
    const auto mayWrite = [](const std::string& each) {
        return ::faccessat(AT_FDCWD, each.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
    };
    return mayWrite(folder) && mayWrite(path) && mayRenameIn(folder, path);
}

} // namespace farview
