#include "Source/FVEPreferencePane.h"

#include "Common/NSURL_Additions.h"
#include "Controls/Alert.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"

using farview::Alert;

namespace
{

constexpr auto accessibilityPane = "UniversalAccessPref";

} // namespace

void FVEPreferencePane::requestAXPermission()
{
    Alert alert;
    alert.messageText = localized("This Feature Requires Accessibility");
    alert.informativeText =
        localized("To enable this feature, please enable access for assistive devices.");
    alert.buttons = {localized("OK"), localized("Cancel")};
    if (!alertPresenter()) {
        requestAXPermissionDidEnd(alert, Alert::secondButtonReturn, nullptr);
        return;
    }
    const auto weak = weak_from_this();
    mAXPermissionRequest =
        alertPresenter()->beginSheet(alert, tabView(), [weak, alert](int returnCode) {
            if (const auto pane = weak.lock())
                pane->requestAXPermissionDidEnd(alert, returnCode, nullptr);
        });
}

/// Takes the question off the screen, as its second button does.
void FVEPreferencePane::cancelAXPermissionRequest()
{
    if (mAXPermissionRequest)
        requestAXPermissionDidEnd({}, Alert::secondButtonReturn, nullptr);
}

void FVEPreferencePane::requestAXPermissionDidEnd(const Alert& /*alert*/, int returnCode,
                                                  void* /*contextInfo*/)
{
    mAXPermissionRequest.reset();
    autoMoveWindowsBack()->setState(0);
    if (returnCode != Alert::firstButtonReturn)
        return;
    if (const auto location = findSystemPrefPaneLocation(accessibilityPane))
        mPlatform.workspace->openURL(*location);
}
