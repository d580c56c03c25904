#include "Platform/Posix/Registry/DriverExtensions.h"

#include "Platform/Posix/FolderListing.h"
#include "Platform/Posix/PropertyLists/PropertyListFile.h"

#include <algorithm>
#include <set>

namespace farview
{
namespace
{

const std::string suffix = ".kext";

bool isForThisPlatform(const PropertyList::Dictionary& info)
{
    return !textFor(info, "CFBundleIdentifier").empty() && textFor(info, "QLNPlatform") == "Linux";
}

bool isUsableBundle(const std::string& folder, const std::string& bundle)
{
    std::string path = folder;
    const auto info = readDictionaryFile(path.append("/").append(bundle) + "/Contents/Info.plist");
    return info.list && isForThisPlatform(*info.list->get<PropertyList::Dictionary>());
}

} // namespace

bool DriverExtensions::isUsable(const std::string& name) const
{
    if (!isPlainFileName(name))
        return false;
    return std::any_of(mFolders.begin(), mFolders.end(), [&](const std::string& folder) {
        return isUsableBundle(folder, name + suffix);
    });
}

std::vector<std::string> DriverExtensions::usableNames() const
{
    std::set<std::string> names;
    for (const auto& folder : mFolders) {
        for (const auto& entry : namesInFolder(folder)) {
            if (entry.ends_with(suffix) && isUsableBundle(folder, entry))
                names.insert(entry.substr(0, entry.size() - suffix.size()));
        }
    }
    return {names.begin(), names.end()};
}

} // namespace farview
