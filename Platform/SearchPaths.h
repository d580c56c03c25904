#pragma once

#include <string>
#include <vector>

namespace farview
{

enum class SearchPathDirectory : unsigned {
    applicationSupport = 14,
    preferencePanes = 22,
};

/// Bits of a domain mask.
enum SearchPathDomain : unsigned {
    userDomain = 1,
    localDomain = 2,
    systemDomain = 8,
};

/// Where the user's, the administrator's and the system's folders are.
class SearchPaths
{
public:
    virtual ~SearchPaths() = default;

    /// The folders in domain order: user, local, system. They need not exist.
    virtual std::vector<std::string> directories(SearchPathDirectory directory,
                                                 unsigned domainMask) = 0;
    /// Where a path that starts with "/System/Library/" or "/Library/" lies on this machine; any
    /// other path is returned as it is.
    virtual std::string located(const std::string& path) = 0;
    /// The user's home folder.
    virtual std::string homeDirectory() = 0;
};

} // namespace farview
