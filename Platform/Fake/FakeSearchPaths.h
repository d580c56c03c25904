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
    FakeSearchPaths();

    std::vector<std::string> directories(SearchPathDirectory directory,
                                         unsigned domainMask) override;
    std::string located(const std::string& path) override;
    std::string homeDirectory() override { return "/home/user"; }

    /// An empty path: that domain has no such folder.
    void setDirectory(SearchPathDirectory directory, SearchPathDomain domain, std::string path);
    /// Where "/System/Library/" and "/Library/" begin.
    void setRoots(std::string systemRoot, std::string localRoot);

private:
    std::map<std::pair<SearchPathDirectory, SearchPathDomain>, std::string> mDirectories;
    std::string mSystemRoot = "/usr/lib/farview";
    std::string mLocalRoot = "/usr/local/lib/farview";
};

} // namespace farview
