#include "Source/FVEPreferencePane.h"

#include "Common/FVEPreferences.h"
#include "Source/SoftwareUpdates.h"

using farview::Object;

void FVEPreferencePane::beginUpdates()
{
    if (!mSoftwareUpdates)
        mSoftwareUpdates = std::make_shared<SoftwareUpdates>(mPlatform, weak_from_this());
    mSoftwareUpdates->begin();
}

void FVEPreferencePane::checkNowForUpdatePressed(Object* /*sender*/)
{
    if (mSoftwareUpdates)
        mSoftwareUpdates->checkNow();
}

void FVEPreferencePane::autoUpdatePressed(Object* sender)
{
    const auto* checkBox = dynamic_cast<farview::Button*>(sender);
    if (!checkBox)
        return;
    FVEPreferences::sharedAppPrefs().setAutoUpdateOption(checkBox->state() == 1);
    if (mSoftwareUpdates)
        mSoftwareUpdates->followOption();
}

void FVEPreferencePane::didChangeStatus(farview::Updater& /*updater*/)
{
    if (mSoftwareUpdates)
        mSoftwareUpdates->statusChanged();
}

void FVEPreferencePane::willInstallUpdate(Object* /*updater*/, Object* /*item*/)
{
    // Neither program of the bundle may run while the bundle is replaced. The engine that replaces
    // it starts them again.
    killServerProcess();
    killStatusItemProcess();
}
