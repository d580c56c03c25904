#pragma once

#include <string>
#include <vector>

namespace farview
{

/// The installed driver extensions: bundles "Name.kext" in the given folders.
///
/// One is usable when its Info.plist can be read, names an identifier ("CFBundleIdentifier"), and
/// is for this platform ("QLNPlatform" is "Linux"). Looks at the disk at each call.
class DriverExtensions
{
public:
    explicit DriverExtensions(std::vector<std::string> folders) : mFolders(std::move(folders)) {}

    bool isUsable(const std::string& name) const;
    /// The names of the usable ones, sorted, each once.
    std::vector<std::string> usableNames() const;

private:
    std::vector<std::string> mFolders;
};

} // namespace farview
