#include "Platform/Posix/FolderListing.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>

namespace farview
{
namespace
{

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

template <typename Condition>
std::vector<std::string> namesWhere(const std::string& path, Condition isWanted)
{
    std::vector<std::string> names;
    const std::unique_ptr<DIR, CloseFolder> folder(::opendir(path.c_str()));
    if (!folder)
        return names;
    while (const auto* entry = ::readdir(folder.get())) {
        const std::string name = entry->d_name;
        if (isPlainFileName(name) && isWanted(*entry))
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

bool isPlainFileName(const std::string& name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

bool isAnythingAt(const std::string& path)
{
    struct stat status {
    };
    return ::lstat(path.c_str(), &status) == 0;
}

std::string parentFolder(const std::string& path)
{
    const auto slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool isRealFolder(const std::string& path)
{
    struct stat status {
    };
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::vector<std::string> namesInFolder(const std::string& path)
{
    return namesWhere(path, [](const dirent&) { return true; });
}

std::vector<std::string> foldersInFolder(const std::string& path)
{
    return namesWhere(path, [&](const dirent& entry) {
        return entry.d_type == DT_DIR ||
               (entry.d_type == DT_UNKNOWN && isRealFolder(path + "/" + entry.d_name));
    });
}

} // namespace farview
