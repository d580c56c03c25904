#include "Applications/OwnPane.h"

#include "Common/NSURL_Additions.h"
#include "Platform/Bundle.h"
#include "Platform/Platform.h"

#include <QCoreApplication>

#include <string>

namespace farview
{

std::shared_ptr<Bundle> ownPane(Platform& platform)
{
    const std::string program = QCoreApplication::applicationFilePath().toStdString();
    const auto inside = program.find(std::string(kPrefPaneName) + "/");
    if (inside != std::string::npos)
        return platform.bundles->bundleWithPath(program.substr(0, inside) + kPrefPaneName);
    const auto installed = findPrefPaneLocation(kPrefPaneName);
    return installed ? platform.bundles->bundleWithPath(installed->path()) : nullptr;
}

} // namespace farview
