#include "Common/FVEPreferences.h"
#include "Common/Rules/PairingTexts.h"
#include "Platform/Platform.h"
#include "Source/FVEConnectToOtherSheetController.h"
#include "Source/FVEPreferencePane.h"

#include <algorithm>

using farview::Object;
using farview::PairingReport;
using State = PairingReport::State;

namespace
{

constexpr farview::Duration timeToRead{1.0};

} // namespace

void FVEPreferencePane::serverPairingDidChange(const farview::Notification& notification)
{
    const PairingReport before = connection().pairing();
    connection().followPairing(notification);
    const auto& report = connection().pairing();
    // The server repeats itself whenever it is asked for the device.
    if (report == before)
        return;
    if (answersRequest(report.state)) {
        setConnectErrorCheckTimer({});
        setConnectErrorMessageTimer({});
        hideProgressIndicator();
        if (connectToOtherSheetController())
            connectToOtherSheetController()->giveWay();
    }
    if (report.state == State::comparing)
        tabView()->selectFirstTabViewItem(this);
    updateUI();
    delayYes();
}

// The question appears below the menu, where a second click may still be on its way.
void FVEPreferencePane::delayYes()
{
    pairingYesButton()->setEnabled(false);
    const auto enable = [this, report = connection().pairing()] {
        if (connection().pairing() == report)
            pairingYesButton()->setEnabled(true);
    };
    mPlatform.runLoop->performAfterDelay(timeToRead, weak_from_this(), enable);
}

void FVEPreferencePane::showPairing()
{
    const bool isOn =
        videoDriverInstalled() && FVEPreferences::sharedAppPrefs().currentState() != 0;
    const auto report = isOn ? connection().pairing() : PairingReport{};
    const auto& texts = pairingTexts(report.state);
    using Role = farview::TextField::Role;
    pairingLabel()->setTextRole(isFailure(report.state) ? Role::error : Role::normal);
    pairingLabel()->setStringValue(
        pairingSentence(report, [this](const std::string& text) { return localized(text); }));
    pairingDigitsLabel()->setStringValue(farview::shownDigits(report.digits));
    pairingDigitsLabel()->setHidden(report.digits.empty());
    pairingHintLabel()->setStringValue(localized(texts.remedy));
    pairingYesButton()->setTitle(localized(texts.yes));
    pairingYesButton()->setHidden(pairingYesButton()->title().empty());
    pairingNoButton()->setTitle(localized(texts.no));
    pairingNoButton()->setHidden(pairingNoButton()->title().empty());
    pairingBox()->setHidden(report.state == State::none);
}

void FVEPreferencePane::pairingYesPressed(Object* /*sender*/)
{
    const auto report = connection().pairing();
    if (report.state == State::changed)
        confirmAnew(report.device);
    else
        connection().confirmDevice();
}

void FVEPreferencePane::pairingNoPressed(Object* /*sender*/) { connection().refuseDevice(); }

/// Forgets the confirmed device of that name, and asks for the one that is there.
void FVEPreferencePane::confirmAnew(const std::string& device)
{
    connection().forgetDevice(device);
    connection().forgetPairing();
    const auto& services = listedServices();
    const auto service = std::find_if(services.begin(), services.end(),
                                      [&](const auto& each) { return each->name() == device; });
    if (service != services.end())
        requestConnection(**service);
    updateUI();
}

void FVEPreferencePane::pairedDevicesDidChange(const farview::Notification& /*notification*/)
{
    updateDeviceHint();
}

void FVEPreferencePane::mayTypePressed(Object* /*sender*/)
{
    connection().letType(connection().deviceKey(), mayTypeCheckbox()->state() == 1);
}
