#include "Platform/Posix/Processes/ToolTrust.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <memory>

namespace farview
{
namespace
{

/// Root's group counts as others: its members are not root. Folders whose entries only their owners
/// may remove count as changeable: what is missing there could be put there by anyone.
bool isChangeableByOthers(const PathPart& part)
{
    return part.owner != 0 || (part.mode & (S_IWGRP | S_IWOTH)) != 0;
}

PathPart partAt(const std::string& path)
{
    constexpr uid_t nobodyWeTrust = static_cast<uid_t>(-1);
    struct stat status {
    };
    if (::lstat(path.c_str(), &status) != 0)
        return {path, nobodyWeTrust, 0};
    return {path, status.st_uid, status.st_mode};
}

} // namespace

std::string firstChangeableByOthers(const std::vector<PathPart>& parts)
{
    const auto found = std::find_if(parts.begin(), parts.end(), isChangeableByOthers);
    return found == parts.end() ? std::string() : found->path;
}

std::string canonicalProgram(const std::string& path)
{
    if (!path.starts_with('/'))
        return {};
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr),
                                                               &std::free);
    struct stat status {
    };
    const bool isProgram = resolved && ::stat(resolved.get(), &status) == 0 &&
                           S_ISREG(status.st_mode) && ::access(resolved.get(), X_OK) == 0;
    return isProgram ? resolved.get() : std::string();
}

std::vector<PathPart> partsOfPath(const std::string& canonicalPath)
{
    std::vector<PathPart> parts{partAt("/")};
    for (std::size_t end = 0; end != std::string::npos && canonicalPath.size() > 1;) {
        end = canonicalPath.find('/', end + 1);
        parts.push_back(partAt(canonicalPath.substr(0, end)));
    }
    return parts;
}

} // namespace farview
