#include "Benchmarks/WatchedPanel.h"

#include "Benchmarks/Figures.h"
#include "Common/FVEPreferences.h"
#include "Platform/Bundle.h"

#include <stdexcept>

namespace farview
{

WatchedPanel::WatchedPanel(const std::string& bundlePath)
{
    auto& platform = mDesktop.platform();
    platform.workspace = mNothing.workspace;
    FVEPreferences::sharedAppPrefs().setCurrentState(1);
    mPane = std::make_shared<FVEPreferencePane>(platform);
    if (!mPane->initWithBundle(platform.bundles->bundleWithPath(bundlePath)))
        throw std::runtime_error("no pane bundle: " + bundlePath);
    connectOutlets();
    mPane->mainViewDidLoad();
    mPane->willSelect();
    mPane->didSelect();
    if (!mPane->videoDriverInstalled())
        throw std::runtime_error("the build tree holds no driver extension");
}

WatchedPanel::~WatchedPanel() { mPane->willUnselect(); }

void WatchedPanel::connectOutlets()
{
    for (const auto& outlet : mPane->outlets())
        outlet.connect(*mPane);
    mPane->tabView()->setIdentifiers({"Main", "Settings"});
    mMenuChanges = mPane->virtualScreenSelectionPopup()->observe([this](Change change) {
        if (change == Change::menu)
            noteEntries();
    });
}

void WatchedPanel::noteEntries()
{
    const double now = microsecondsNow();
    for (const auto& item : mPane->virtualScreenSelectionPopup()->menu()->items())
        mAppearances.try_emplace(item->title, now);
}

} // namespace farview
