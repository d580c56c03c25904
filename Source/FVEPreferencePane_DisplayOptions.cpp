#include "Source/FVEPreferencePane.h"

#include "Common/FVEConstants.h"
#include "Common/FVEPreferences.h"
#include "Platform/Accessibility.h"
#include "Platform/LoginItem.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "Source/HiDPIChange.h"

using farview::Object;

namespace
{

bool isOn(const Object* sender)
{
    const auto* button = dynamic_cast<const farview::Button*>(sender);
    return button && button->state() == 1;
}

} // namespace

void FVEPreferencePane::menuExtraCheckboxPressed(Object* sender)
{
    FVEPreferences::sharedAppPrefs().setShowInMenuBar(isOn(sender));
    if (isOn(sender))
        startStatusItemProcess();
    else
        killStatusItemProcess();
}

void FVEPreferencePane::startAtLoginPressed(Object* sender)
{
    auto& item = *mPlatform.loginItem;
    const std::string program = statusItemApplication().value_or(farview::URL()).path() +
                                "/Contents/Linux/" + kFVEMenuExtraApplicationName;
    if (!(isOn(sender) ? item.enable({program, kAtLoginArgument}) : item.disable()))
        log("The start at login cannot be changed");
    // The box shows what the entry says, which may be what it said before.
    startAtLoginCheckbox()->setState(item.isEnabled() ? 1 : 0);
}

void FVEPreferencePane::enableTouchDisplayPressed(Object* sender)
{
    FVEPreferences::sharedAppPrefs().setEnableTouchDisplay(isOn(sender));
}

void FVEPreferencePane::enableRetinaPressed(Object* sender)
{
    FVEPreferences::sharedAppPrefs().setRetinaResolutionsEnabled(isOn(sender));
}

void FVEPreferencePane::enableHiDPIPressed(Object* /*sender*/) { mHiDPIChange->begin(); }

bool FVEPreferencePane::authExecuteHelperWithToolURL(const OptionalURL& tool,
                                                     std::string* /*error*/)
{
    mHiDPIChange->execute(tool);
    return false;
}

const std::shared_ptr<FVEEnableHiDPIController>& FVEPreferencePane::enableHiDPIController() const
{
    return mHiDPIChange->controller();
}

void FVEPreferencePane::autoMoveWindowsBackPressed(Object* sender)
{
    if (!isOn(sender)) {
        FVEPreferences::sharedAppPrefs().setAutoMoveWindowsBackOption(false);
        return;
    }
    mPlatform.accessibility->askWhetherEnabled(weak_from_this(), [this](bool isEnabled) {
        // It may have been unticked or hidden before the desktop answered.
        if (!isEnabled && mOnShow)
            requestAXPermission();
        else if (isEnabled && isOn(autoMoveWindowsBack().get()))
            FVEPreferences::sharedAppPrefs().setAutoMoveWindowsBackOption(true);
    });
}

void FVEPreferencePane::reinstallDriversPressed(Object* /*sender*/)
{
    if (installerURL())
        mPlatform.workspace->openURL(*installerURL());
}

void FVEPreferencePane::helpPressed(Object* /*sender*/)
{
    if (documentation())
        mPlatform.workspace->openURL(*documentation());
}
