#pragma once

#include "Platform/Desktop/DesktopPlatform.h"
#include "Platform/Platform.h"
#include "Source/FVEPreferencePane.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace farview
{

/// The panel on the real platform, switched on and on show, without a window and without the screen
/// server. Notes when each device appears in its menu.
class WatchedPanel
{
public:
    /// `bundlePath`: the pane bundle.
    explicit WatchedPanel(const std::string& bundlePath);
    ~WatchedPanel();

    /// When the first entry of each title appeared, in microseconds of the monotonic clock.
    const std::map<std::string, double>& appearances() const { return mAppearances; }

private:
    void connectOutlets();
    void noteEntries();

    DesktopPlatform mDesktop{{}};
    Platform::Scope mInstalled{mDesktop.platform()};
    Platform mNothing;
    std::shared_ptr<FVEPreferencePane> mPane;
    Subscription mMenuChanges;
    std::map<std::string, double> mAppearances;
};

} // namespace farview
