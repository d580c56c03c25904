#include "Platform/Fake/FakeSearchPaths.h"

namespace farview
{

FakeSearchPaths::FakeSearchPaths()
{
    using enum SearchPathDirectory;
    setDirectory(applicationSupport, userDomain, "/home/user/.local/share");
    setDirectory(preferencePanes, userDomain, "/home/user/.local/share/farview/PreferencePanes");
    setDirectory(preferencePanes, localDomain, "/usr/local/lib/farview/PreferencePanes");
    setDirectory(preferencePanes, systemDomain, "/usr/lib/farview/PreferencePanes");
}

std::vector<std::string> FakeSearchPaths::directories(SearchPathDirectory directory,
                                                      unsigned domainMask)
{
    std::vector<std::string> found;
    for (const auto domain : {userDomain, localDomain, systemDomain}) {
        const auto path = mDirectories.find({directory, domain});
        if ((domainMask & domain) != 0 && path != mDirectories.end() && !path->second.empty())
            found.push_back(path->second);
    }
    return found;
}

std::string FakeSearchPaths::located(const std::string& path)
{
    const std::string system = "/System/Library/";
    const std::string local = "/Library/";
    if (path.starts_with(system))
        return mSystemRoot + "/" + path.substr(system.size());
    if (path.starts_with(local))
        return mLocalRoot + "/" + path.substr(local.size());
    return path;
}

void FakeSearchPaths::setDirectory(SearchPathDirectory directory, SearchPathDomain domain,
                                   std::string path)
{
    mDirectories[{directory, domain}] = std::move(path);
}

void FakeSearchPaths::setRoots(std::string systemRoot, std::string localRoot)
{
    mSystemRoot = std::move(systemRoot);
    mLocalRoot = std::move(localRoot);
}

} // namespace farview
