#pragma once

#include "Platform/SearchPaths.h"

#include <map>
#include <utility>

namespace farview
{

/// Folders that exist in name only: "/home/user/…", "/usr/local/…", "/usr/…", or what tests set.
class FakeSearchPaths final : public SearchPaths
{
public:
    FakeSearchPaths()
    {
        using enum SearchPathDirectory;
        setDirectory(applicationSupport, userDomain, "/home/user/.local/share");
        setDirectory(preferencePanes, userDomain,
                     "/home/user/.local/share/farview/PreferencePanes");
        setDirectory(preferencePanes, localDomain, "/usr/local/lib/farview/PreferencePanes");
        setDirectory(preferencePanes, systemDomain, "/usr/lib/farview/PreferencePanes");
    }

    std::vector<std::string> directories(SearchPathDirectory directory,
                                         unsigned domainMask) override
    {
        std::vector<std::string> found;
        for (const auto domain : {userDomain, localDomain, systemDomain}) {
            const auto path = mDirectories.find({directory, domain});
            if ((domainMask & domain) != 0 && path != mDirectories.end() && !path->second.empty())
                found.push_back(path->second);
        }
        return found;
    }

    std::string located(const std::string& path) override
    {
        const std::string system = "/System/Library/";
        const std::string local = "/Library/";
        if (path.starts_with(system))
            return mSystemRoot + "/" + path.substr(system.size());
        if (path.starts_with(local))
            return mLocalRoot + "/" + path.substr(local.size());
        return path;
    }

    std::string homeDirectory() override { return "/home/user"; }

    /// An empty path: that domain has no such folder.
    void setDirectory(SearchPathDirectory directory, SearchPathDomain domain, std::string path)
    {
        mDirectories[{directory, domain}] = std::move(path);
    }

    /// Where "/System/Library/" and "/Library/" begin.
    void setRoots(std::string systemRoot, std::string localRoot)
    {
        mSystemRoot = std::move(systemRoot);
        mLocalRoot = std::move(localRoot);
    }

private:
    std::map<std::pair<SearchPathDirectory, SearchPathDomain>, std::string> mDirectories;
    std::string mSystemRoot = "/usr/lib/farview";
    std::string mLocalRoot = "/usr/local/lib/farview";
};

} // namespace farview
