#include "Source/FVEPreferencePane.h"

#include "Common/FVEDistributedNotifications.h"
#include "Common/FVEPreferences.h"
#include "Common/GetPID.h"
#include "Common/NSString_Additions.h"
#include "Common/Rules/Connection.h"
#include "Platform/Platform.h"

#include <array>

using farview::Duration;
using farview::Notification;
using farview::Object;

namespace
{

constexpr Duration watchdogInterval{10.0};
constexpr Duration errorMessageHold{5.0};
constexpr Duration spinnerSafetyDelay{15.0};
constexpr Duration spinnerAppearanceDelay{0.25};
constexpr Duration queryResultRetryDelay{2.0};
// More answers than this wait only when somebody floods the bus.
constexpr int mostQueryResultsWaiting = 64;

std::optional<std::string> optionalText(const std::string* text)
{
    return text ? std::optional(*text) : std::nullopt;
}

} // namespace

void FVEPreferencePaneProperties::setSpinningForServerTimer(const WeakTimer& timer)
{
    replaceTimer(mSpinningForServerTimer, timer);
}

void FVEPreferencePaneProperties::setConnectErrorCheckTimer(const WeakTimer& timer)
{
    replaceTimer(mConnectErrorCheckTimer, timer);
}

void FVEPreferencePaneProperties::setConnectErrorMessageTimer(const WeakTimer& timer)
{
    replaceTimer(mConnectErrorMessageTimer, timer);
}

void FVEPreferencePaneProperties::setWatchdogTimer(const WeakTimer& timer)
{
    replaceTimer(mWatchdogTimer, timer);
}

bool FVEPreferencePane::isAcceptable(const Notification& notification)
{
    if (farview::isAcceptableReportedText(notification.text(kDeviceNameKey)) &&
        farview::isAcceptableReportedText(notification.text(kDeviceAddressKey)))
        return true;
    log(notification.name() + " ignored: its texts are too long");
    return false;
}

void FVEPreferencePane::serverConnectedToDeviceNotification(const Notification& notification)
{
    if (!isAcceptable(notification))
        return;
    mUnansweredRequest.reset();
    const auto* name = notification.text(kDeviceNameKey);
    if (name && *name == kOtherDeviceName)
        followConnectionByAddress(notification);
    else
        followConnectionToDevice(name);
    updateUI();
}

void FVEPreferencePane::followConnectionByAddress(const Notification& notification)
{
    setConnectedToOtherDevice(true);
    auto& preferences = FVEPreferences::sharedAppPrefs();
    const std::string stored = preferences.currentVirtualScreenDevice();
    const auto connection = farview::connectionByAddress(
        stored, isValidIPAddress(stored), connectedToOtherDeviceIPString(),
        optionalText(notification.text(kDeviceAddressKey)));
    if (connection.address)
        setConnectedToOtherDeviceIPString(connection.address);
    if (connection.lastOther)
        preferences.setLastOtherDevice(*connection.lastOther);
    if (connection.currentDevice)
        preferences.setCurrentVirtualScreenDevice(*connection.currentDevice);
}

void FVEPreferencePane::followConnectionToDevice(const std::string* hostName)
{
    setConnectedToOtherDevice(false);
    selectDeviceOfHost(hostName);
    if (!selectedNetService())
        return;
    auto& popUp = *virtualScreenSelectionPopup();
    const int index =
        popUp.indexOfItemWithRepresentedObject(std::shared_ptr<Object>(selectedNetService()));
    if (const auto item = popUp.itemAtIndex(index)) {
        item->state = 1;
        popUp.itemChanged();
    }
    FVEPreferences::sharedAppPrefs().setCurrentVirtualScreenDevice(
        selectedNetService()->hostName().value_or(std::string{}));
}

void FVEPreferencePane::selectDeviceOfHost(const std::string* hostName)
{
    const auto services = listedServices();
    std::vector<std::optional<std::string>> hostNames;
    hostNames.reserve(services.size());
    for (const auto& service : services)
        hostNames.push_back(service->hostName());
    const auto index = farview::deviceForReportedName(hostNames, hostName);
    if (!index)
        return;
    setSelectedNetService(services[*index]);
    setConnectErrorCheckTimer({});
    hideProgressIndicator();
}

void FVEPreferencePane::serverQueryResultNotification(const Notification& notification)
{
    if (!isAcceptable(notification))
        return;
    switch (
        farview::queryResultStep(notification.text(kDeviceNameKey), !listedServices().empty())) {
    case farview::QueryResultStep::ignore:
        break;
    case farview::QueryResultStep::tryAgainLater:
        queryResultLater(notification);
        break;
    case farview::QueryResultStep::handle:
        serverConnectedToDeviceNotification(notification);
        break;
    }
}

void FVEPreferencePane::queryResultLater(const Notification& notification)
{
    if (mQueryResultsWaiting >= mostQueryResultsWaiting)
        return;
    ++mQueryResultsWaiting;
    const auto again = [this, name = notification.name(), userInfo = notification.userInfo()] {
        --mQueryResultsWaiting;
        serverQueryResultNotification(Notification(name, nullptr, userInfo));
    };
    mPlatform.runLoop->performAfterDelay(queryResultRetryDelay, weak_from_this(), again);
}

void FVEPreferencePane::serverDisconnectedFromDeviceNotification(const Notification& notification)
{
    setSelectedNetService(nullptr);
    setConnectedToOtherDevice(false);
    updateUI();
    if (notification.text(kAwaitsRequestKey))
        repeatUnansweredRequest();
}

void FVEPreferencePane::serverRespondedToConnectRequest(const Notification&)
{
    hideProgressIndicator();
    updateUI();
}

void FVEPreferencePane::requestingErrorMsgFromPrefPane(const Notification&)
{
    checkForConnectionError(nullptr);
}

void FVEPreferencePane::checkForConnectionError(Object* /*sender*/)
{
    mUnansweredRequest.reset();
    setConnectErrorCheckTimer({});
    instructionsLabel()->setStringValue(localized(farview::connectionErrorText));
    warningImage()->setHidden(false);
    showConnectionHelp();
    setConnectErrorMessageTimer(
        scheduleOnce(errorMessageHold, &FVEPreferencePane::errorMessageCanNowBeCleared));
    // The device may have died without a goodbye.
    mPlatform.discovery->checkAgain();
}

void FVEPreferencePane::errorMessageCanNowBeCleared(Object* /*sender*/)
{
    setConnectErrorMessageTimer({});
}

void FVEPreferencePane::clearConnectionError()
{
    instructionsLabel()->setStringValue(localized(farview::instructionsText));
    warningImage()->setHidden(true);
    hideConnectionHelp();
}

void FVEPreferencePane::showProgressIndicator()
{
    setPopUpWidth(*placeholderForReducedPopupSize());
    mPlatform.runLoop->performAfterDelay(spinnerAppearanceDelay, weak_from_this(),
                                         [this] { showWaitingSpinner(); });
    virtualScreenSelectionPopup()->setEnabled(false);
    setSpinningForServerTimer(
        scheduleOnce(spinnerSafetyDelay, &FVEPreferencePane::hideProgressIndicator));
}

void FVEPreferencePane::showWaitingSpinner()
{
    waitingForServerIndicator()->setHidden(false);
    waitingForServerIndicator()->setUsesThreadedAnimation(true);
    waitingForServerIndicator()->startAnimation();
}

void FVEPreferencePane::hideProgressIndicator()
{
    virtualScreenSelectionPopup()->setEnabled(true);
    // A spinner that is still to come is not called off: the safety timer takes it down.
    if (waitingForServerIndicator()->isHidden())
        return;
    waitingForServerIndicator()->setUsesThreadedAnimation(false);
    waitingForServerIndicator()->stopAnimation();
    waitingForServerIndicator()->setHidden(true);
    setPopUpWidth(*placeholderForFullPopupSize());
    setSpinningForServerTimer({});
}

void FVEPreferencePane::setPopUpWidth(const farview::View& placeholder)
{
    auto frame = virtualScreenSelectionPopup()->frame();
    frame.size.width = placeholder.frame().size.width;
    virtualScreenSelectionPopup()->setFrame(frame, true);
}

void FVEPreferencePane::launchWatchdogTimer()
{
    setWatchdogTimer(mPlatform.runLoop->scheduledTimer(
        watchdogInterval, true, weak_from_this(), [this] { watchdogTimerOperation(nullptr); }));
}

void FVEPreferencePane::watchdogTimerOperation(Object* /*sender*/)
{
    std::array<std::int32_t, 10> pids{};
    std::uint32_t count = 0;
    std::int32_t error = 0;
    const int result = GetAllPIDsForProcessName(kFVEScreenServerApplicationNameCString, pids.data(),
                                                pids.size(), &count, &error);
    const int state = onOffSwitch()->state();
    if (farview::switchIsOutOfStep(result, state))
        onOffSwitch()->setState(state == 0 ? 1 : 0, false);
    // Time passed: what the line about devices says may be due to change.
    updateDeviceHint();
}

FVEPreferencePane::WeakTimer FVEPreferencePane::scheduleOnce(Duration delay,
                                                             void (FVEPreferencePane::*operation)())
{
    return mPlatform.runLoop->scheduledTimer(delay, false, weak_from_this(),
                                             [this, operation] { (this->*operation)(); });
}

FVEPreferencePane::WeakTimer
FVEPreferencePane::scheduleOnce(Duration delay, void (FVEPreferencePane::*operation)(Object*))
{
    return mPlatform.runLoop->scheduledTimer(delay, false, weak_from_this(),
                                             [this, operation] { (this->*operation)(nullptr); });
}
