#include "Source/FVEPreferencePane.h"

#include "Common/FVEConstants.h"
#include "Controls/Alert.h"
#include "Platform/Bundle.h"

using farview::Alert;
using farview::Object;
using farview::URL;

// A program of its own: whatever it has to wait for, the panel does not.
void FVEPreferencePane::diagnosePressed(Object* /*sender*/)
{
    const auto path =
        mBundle ? mBundle->pathForResource(kFVEDoctorApplicationName, "app") : std::nullopt;
    if (launch(URL::fileURLWithPath(path.value_or(std::string{}))) || !mAlertPresenter)
        return;
    Alert alert;
    alert.messageText = localized("The diagnosis cannot be started.");
    alert.informativeText = localized("Install Farview again.");
    alert.buttons = {localized("OK")};
    mDiagnosisAlert = mAlertPresenter->beginSheet(alert, tabView(), [](int) {});
}
