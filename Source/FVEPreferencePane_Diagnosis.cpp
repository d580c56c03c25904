#include "Source/FVEPreferencePane.h"

#include "Common/FVEConstants.h"
#include "Common/Rules/FilledText.h"
#include "Common/Rules/FirewallAdvice.h"
#include "Controls/Alert.h"
#include "Platform/Bundle.h"
#include "Platform/Firewall.h"
#include "Platform/Platform.h"

using farview::Alert;
using farview::Object;
using farview::URL;

// A program of its own: whatever it has to wait for, the panel does not.
void FVEPreferencePane::diagnosePressed(Object* /*sender*/)
{
    const auto path =
        mBundle ? mBundle->pathForResource(kFVEDoctorApplicationName, "app") : std::nullopt;
    if (launch(URL::fileURLWithPath(path.value_or(std::string{}))) || !alertPresenter())
        return;
    Alert alert;
    alert.messageText = localized("The diagnosis cannot be started.");
    alert.informativeText = localized("Install Farview again.");
    alert.buttons = {localized("OK")};
    mDiagnosisAlert = alertPresenter()->beginSheet(alert, tabView(), [](int) {});
}

// The fixed text of a failed connection speaks of another platform's firewall.
void FVEPreferencePane::showConnectionHelp(bool isShown)
{
    connectionDiagnoseButton()->setHidden(!isShown);
    if (!isShown)
        return connectionHelpLabel()->setStringValue({});
    const auto advice = farview::firewallAdvice(mPlatform.firewall->state());
    std::string text = localized(advice.text);
    if (!advice.tool.empty())
        text = farview::filledText(std::move(text), advice.tool);
    connectionHelpLabel()->setStringValue(
        farview::filledText(std::move(text), std::to_string(mRequestedPort)));
}
