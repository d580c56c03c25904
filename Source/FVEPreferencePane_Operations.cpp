#include "Source/FVEPreferencePane.h"

#include "Common/FVEDistributedNotifications.h"
#include "Controls/OperationTable.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"

#include <array>

using farview::Selector;

namespace
{

using Pane = FVEPreferencePane;

template <auto method> constexpr auto action(std::string_view name)
{
    return farview::action<method, Pane>(name);
}

template <auto method> constexpr auto observer(std::string_view name)
{
    return farview::observer<method, Pane>(name);
}

// Everything that controls, menus, notification centres and interface files call by name.
constexpr auto operations = std::to_array<farview::Operation<Pane>>({
    action<&Pane::onTextPressed>("onTextPressed:"),
    action<&Pane::offTextPressed>("offTextPressed:"),
    action<&Pane::onOffSliderPressed>("onOffSliderPressed:"),
    action<&Pane::onOffSwitchPressed>("onOffSwitchPressed:"),
    action<&Pane::takeNoVirtualScreenFrom>("takeNoVirtualScreenFrom:"),
    action<&Pane::takeVirtualScreenFrom>("takeVirtualScreenFrom:"),
    action<&Pane::takeVirtualOtherDeviceScreenFrom>("takeVirtualOtherDeviceScreenFrom:"),
    action<&Pane::showDevices>("showDevices:"),
    action<&Pane::checkForConnectionError>("checkForConnectionError:"),
    action<&Pane::errorMessageCanNowBeCleared>("errorMessageCanNowBeCleared:"),
    action<&Pane::watchdogTimerOperation>("watchdogTimerOperation:"),
    action<&Pane::autoConnectPressed>("autoConnectPressed:"),
    action<&Pane::autoConnectAllPressed>("autoConnectAllPressed:"),
    action<&Pane::menuExtraCheckboxPressed>("menuExtraCheckboxPressed:"),
    action<&Pane::startAtLoginPressed>("startAtLoginPressed:"),
    action<&Pane::enableTouchDisplayPressed>("enableTouchDisplayPressed:"),
    action<&Pane::enableRetinaPressed>("enableRetinaPressed:"),
    action<&Pane::enableHiDPIPressed>("enableHiDPIPressed:"),
    action<&Pane::autoMoveWindowsBackPressed>("autoMoveWindowsBackPressed:"),
    action<&Pane::reinstallDriversPressed>("reinstallDriversPressed:"),
    action<&Pane::helpPressed>("helpPressed:"),
    action<&Pane::diagnosePressed>("diagnosePressed:"),
    action<&Pane::screenPlaced>("screenPlaced:"),
    action<&Pane::mayTypePressed>("mayTypePressed:"),
    action<&Pane::pairingYesPressed>("pairingYesPressed:"),
    action<&Pane::pairingNoPressed>("pairingNoPressed:"),
    action<&Pane::checkNowForUpdatePressed>("checkNowForUpdatePressed:"),
    action<&Pane::autoUpdatePressed>("autoUpdatePressed:"),
    observer<&Pane::prefsChanged>("prefsChanged:"),
    observer<&Pane::applicationDidBecomeActive>("applicationDidBecomeActive:"),
    observer<&Pane::virtualScreensDidChange>("virtualScreensDidChange:"),
    observer<&Pane::virtualScreensDidRemoveService>("virtualScreensDidRemoveService:"),
    observer<&Pane::netServiceTXTRecordChanged>("netServiceTXTRecordChanged:"),
    observer<&Pane::serverConnectedToDeviceNotification>("serverConnectedToDeviceNotification:"),
    observer<&Pane::serverQueryResultNotification>("serverQueryResultNotification:"),
    observer<&Pane::serverDisconnectedFromDeviceNotification>(
        "serverDisconnectedFromDeviceNotification:"),
    observer<&Pane::serverRespondedToConnectRequest>("serverRespondedToConnectRequest:"),
    observer<&Pane::requestingErrorMsgFromPrefPane>("requestingErrorMsgFromPrefPane:"),
    observer<&Pane::serverScreenDidChange>("serverScreenDidChange:"),
    observer<&Pane::serverFurtherDevicesDidChange>("serverFurtherDevicesDidChange:"),
    observer<&Pane::pairedDevicesDidChange>("pairedDevicesDidChange:"),
    observer<&Pane::serverPairingDidChange>("serverPairingDidChange:"),
});

struct Registration {
    const char* name;
    Selector selector;
};

// What the handler of a response hears is the pane's own request: the popup is released as soon as
// the request is on its way.
constexpr std::array distributedRegistrations = {
    Registration{kFVEPrefsDidChangeNotification, {"prefsChanged:"}},
    Registration{kConnectServerToHost, {"serverRespondedToConnectRequest:"}},
    Registration{kQueryResultForConnectedHost, {"serverQueryResultNotification:"}},
    Registration{kServerConnectedToDevice, {"serverConnectedToDeviceNotification:"}},
    Registration{kServerDisconnectedFromDevice, {"serverDisconnectedFromDeviceNotification:"}},
    Registration{kRequestingErrorMsgFromPrefPane, {"requestingErrorMsgFromPrefPane:"}},
    Registration{kServerScreenDidChange, {"serverScreenDidChange:"}},
    Registration{kServerFurtherDevicesDidChange, {"serverFurtherDevicesDidChange:"}},
    Registration{kPairedDevicesDidChange, {"pairedDevicesDidChange:"}},
    Registration{kServerPairingDidChange, {"serverPairingDidChange:"}},
};

constexpr std::array browserRegistrations = {
    Registration{kQLNBonjourBrowserDidAddService, {"virtualScreensDidChange:"}},
    Registration{kQLNBonjourBrowserDidRemoveService, {"virtualScreensDidRemoveService:"}},
    // The end of a resolve, not the change of a record, tells that the record is known.
    Registration{kQLNBonjourBrowserDidUpdateService, {"netServiceTXTRecordChanged:"}},
};

} // namespace

bool FVEPreferencePane::respondsTo(Selector selector) const
{
    return farview::findOperation<Pane>(operations, selector) != nullptr;
}

bool FVEPreferencePane::perform(Selector selector, farview::Object* argument)
{
    const auto* operation = farview::findOperation<Pane>(operations, selector);
    if (!operation)
        return false;
    operation->call(*this, argument);
    return true;
}

void FVEPreferencePane::addObservers()
{
    const auto calling = [this](Selector selector) {
        return farview::performing(weak_from_this(), selector);
    };
    auto& distributed = *mPlatform.distributedNotificationCenter;
    for (const auto& each : distributedRegistrations)
        distributed.addObserver(weak_from_this(), calling(each.selector), each.name, "");

    auto& local = *mPlatform.notificationCenter;
    // Twice, so that the handler's contract is kept for whoever counts the calls.
    for (int time = 0; time < 2; ++time)
        local.addObserver(weak_from_this(), calling({"applicationDidBecomeActive:"}),
                          farview::applicationDidBecomeActiveNotification, mPlatform.application);
    for (const auto& each : browserRegistrations)
        local.addObserver(weak_from_this(), calling(each.selector), each.name, nullptr);
    observeLosses();
}

void FVEPreferencePane::observeLosses()
{
    const std::weak_ptr<FVEPreferencePane> weak = weak_from_this();
    // What was posted while there was no bus is lost: settings and connection are asked for anew.
    mReconnection = mPlatform.distributedNotificationCenter->observeReconnection([weak] {
        const auto pane = weak.lock();
        if (!pane)
            return;
        pane->connection().forgetPairing();
        pane->followPreferences();
        pane->connection().query();
    });
    mDiscoveryCondition = mPlatform.discovery->observeCondition([weak] {
        if (const auto pane = weak.lock())
            pane->updateDeviceHint();
    });
}

void FVEPreferencePane::removeObservers()
{
    mReconnection.end();
    mDiscoveryCondition.end();
    mPlatform.notificationCenter->removeObserver(weak_from_this());
    mPlatform.distributedNotificationCenter->removeObserver(weak_from_this());
}

void FVEPreferencePane::applicationDidBecomeActive(const farview::Notification& /*notification*/) {}
