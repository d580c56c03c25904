#include "Platform/Posix/PosixSearchPaths.h"

#include <climits>
#include <unistd.h>

#include <array>

namespace farview
{
namespace
{

const std::string panes = "PreferencePanes";

struct SystemFolders {
    std::string root;
    std::string panes;
};

SystemFolders installedAt(const std::string& root) { return {root, root + "/" + panes}; }

SystemFolders buildTreeAt(const std::string& root) { return {root, root}; }

std::string parentOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

/// The folder that holds the pane bundle around this path; empty when there is none.
std::string folderOfBundleAround(const std::string& path)
{
    const auto end = path.find(".prefPane/");
    return end == std::string::npos ? std::string{} : parentOf(path.substr(0, end));
}

bool isBuildTree(const std::string& folder)
{
    return ::access((folder + "/CMakeCache.txt").c_str(), F_OK) == 0;
}

SystemFolders systemFoldersOf(const std::string& executable)
{
    const auto around = folderOfBundleAround(executable);
    if (around.ends_with("/" + panes))
        return installedAt(parentOf(around));
    if (!around.empty())
        return buildTreeAt(around);
    const auto prefix = parentOf(parentOf(executable));
    return isBuildTree(prefix) ? buildTreeAt(prefix) : installedAt(prefix + "/lib/farview");
}

std::string ownExecutable()
{
    std::array<char, PATH_MAX> path{};
    const auto length = ::readlink("/proc/self/exe", path.data(), path.size());
    return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length))
                      : "/usr/bin/farview";
}

} // namespace

PosixSearchPaths::PosixSearchPaths(EnvironmentUse use) : PosixSearchPaths(use, ownExecutable()) {}

PosixSearchPaths::PosixSearchPaths(EnvironmentUse use, const std::string& executable)
{
    const Environment environment(use);
    mHome = environment.homeFolder();
    mDataHome = environment.dataHome();
    mLocalRoot = environment.folder("FARVIEW_LOCAL_ROOT");
    if (mLocalRoot.empty())
        mLocalRoot = "/usr/local/lib/farview";
    const auto moved = environment.folder("FARVIEW_SYSTEM_ROOT");
    const auto system = moved.empty() ? systemFoldersOf(executable) : installedAt(moved);
    mSystemRoot = system.root;
    mSystemPanes = system.panes;
}

std::string PosixSearchPaths::panesFolder(SearchPathDomain domain) const
{
    switch (domain) {
    case userDomain:
        return mDataHome + "/farview/" + panes;
    case localDomain:
        return mLocalRoot + "/" + panes;
    case systemDomain:
        return mSystemPanes;
    }
    return {};
}

std::vector<std::string> PosixSearchPaths::directories(SearchPathDirectory directory,
                                                       unsigned domainMask)
{
    std::vector<std::string> found;
    if (directory == SearchPathDirectory::applicationSupport) {
        if ((domainMask & userDomain) != 0)
            found.push_back(mDataHome);
        return found;
    }
    for (const auto domain : {userDomain, localDomain, systemDomain}) {
        if ((domainMask & domain) != 0)
            found.push_back(panesFolder(domain));
    }
    return found;
}

std::string PosixSearchPaths::located(const std::string& path)
{
    const std::string system = "/System/Library/";
    const std::string systemPanes = system + panes + "/";
    const std::string local = "/Library/";
    if (path.starts_with(systemPanes))
        return mSystemPanes + "/" + path.substr(systemPanes.size());
    if (path.starts_with(system))
        return mSystemRoot + "/" + path.substr(system.size());
    if (path.starts_with(local))
        return mLocalRoot + "/" + path.substr(local.size());
    return path;
}

std::vector<std::string> PosixSearchPaths::extensionFolders() const
{
    return {mDataHome + "/farview/Extensions", mLocalRoot + "/Extensions",
            mSystemRoot + "/Extensions"};
}

} // namespace farview
