#include "Common/NSURL_Additions.h"

#include "Platform/FileManager.h"
#include "Platform/Platform.h"
#include "Platform/SearchPaths.h"

using farview::URL;

namespace
{

constexpr unsigned everyDomain = farview::userDomain | farview::localDomain | farview::systemDomain;

std::optional<URL> findPane(const std::string& fileName, unsigned domains)
{
    const auto& platform = farview::Platform::current();
    const auto folders =
        platform.searchPaths->directories(farview::SearchPathDirectory::preferencePanes, domains);
    for (const auto& folder : folders) {
        std::string path = folder;
        path.append("/").append(fileName);
        if (platform.fileManager->fileExistsAtPath(path))
            return URL::fileURLWithPath(std::move(path));
    }
    return std::nullopt;
}

} // namespace

URL findSystemPreferences() { return URL::fileURLWithPath("/Application/System Preferences.app"); }

std::optional<URL> findPrefPaneLocation(const std::string& name)
{
    return findPane(name, everyDomain);
}

std::optional<URL> findSystemPrefPaneLocation(const std::string& name)
{
    return findPane(name + ".prefPane", farview::systemDomain);
}
