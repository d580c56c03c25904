#include "Applications/FarviewStatusItem/ServerLaunch.h"

#include "Common/FVEConstants.h"
#include "Platform/Bundle.h"
#include "Platform/Log.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"

namespace farview
{

void launchServer(Platform& platform, const Bundle* pane)
{
    constexpr unsigned options = Workspace::launchAsync | Workspace::launchWithoutActivation |
                                 Workspace::launchWithoutAddingToRecents;
    const auto path =
        pane ? pane->pathForResource(kFVEScreenServerApplicationName, "app") : std::nullopt;
    const auto url = URL::fileURLWithPath(path.value_or(std::string{}));
    if (!platform.workspace->launchApplicationAtURL(url, options))
        platform.log->write(LogLevel::warning, "Cannot start the screen server");
}

} // namespace farview
