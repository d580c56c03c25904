#pragma once

#include "Platform/Posix/Environment.h"
#include "Platform/SearchPaths.h"

#include <string>
#include <vector>

namespace farview
{

/// The three roots, each with "PreferencePanes" and "Extensions":
///
/// - the user's: "farview" in the user's folder of data
/// - local, the administrator's: "/usr/local/lib/farview" ($FARVIEW_LOCAL_ROOT moves it)
/// - system: found from the executable's own place ($FARVIEW_SYSTEM_ROOT moves it). A program in
///   "PREFIX/bin" belongs to "PREFIX/lib/farview"; one inside a pane bundle to where the bundle is.
///   In a build tree the root is the tree itself, and the bundle lies in it without a folder of its
///   own.
class PosixSearchPaths final : public SearchPaths
{
public:
    explicit PosixSearchPaths(EnvironmentUse use);
    /// For an executable at that absolute path.
    PosixSearchPaths(EnvironmentUse use, const std::string& executable);

    std::vector<std::string> directories(SearchPathDirectory directory,
                                         unsigned domainMask) override;
    std::string located(const std::string& path) override;
    std::string homeDirectory() override { return mHome; }

    /// Where driver extensions are installed, in domain order.
    std::vector<std::string> extensionFolders() const;

private:
    std::string panesFolder(SearchPathDomain domain) const;

    std::string mHome;
    std::string mDataHome;
    std::string mLocalRoot;
    std::string mSystemRoot;
    std::string mSystemPanes;
};

} // namespace farview
