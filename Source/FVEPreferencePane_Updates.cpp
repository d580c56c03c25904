#include "Source/FVEPreferencePane.h"

#include "Common/FVEPreferences.h"

using farview::Object;

void FVEPreferencePane::checkNowForUpdatePressed(Object* /*sender*/) {}

void FVEPreferencePane::autoUpdatePressed(Object* sender)
{
    if (const auto* checkBox = dynamic_cast<farview::Button*>(sender))
        FVEPreferences::sharedAppPrefs().setAutoUpdateOption(checkBox->state() == 1);
}

void FVEPreferencePane::willInstallUpdate(Object* /*updater*/, Object* /*item*/)
{
    // Neither program of the bundle may run while the bundle is replaced.
    killServerProcess();
    killStatusItemProcess();
}
