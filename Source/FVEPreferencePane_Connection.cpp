#include "Source/FVEPreferencePane.h"

#include "Common/FVEDistributedNotifications.h"
#include "Common/FVEPreferences.h"
#include "Common/GetPID.h"
#include "Common/Rules/Connection.h"
#include "Platform/Platform.h"
#include "Source/FVEConnectToOtherSheetController.h"

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

void setWidth(farview::View& view, const farview::View& placeholder)
{
    auto frame = view.frame();
    frame.size.width = placeholder.frame().size.width;
    view.setFrame(frame, true);
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
    if (farview::ConnectionFollower::isAcceptable(notification))
        return true;
    log(notification.name() + " ignored: its texts are too long");
    return false;
}

void FVEPreferencePane::serverConnectedToDeviceNotification(const Notification& notification)
{
    if (!isAcceptable(notification))
        return;
    connection().forgetRequest();
    connection().followKey(notification);
    const auto* name = notification.text(kDeviceNameKey);
    if (name && *name == kOtherDeviceName)
        connection().followAddress(notification, FVEPreferences::sharedAppPrefs());
    else
        followConnectionToDevice(name);
    updateUI();
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
    const auto service = farview::ConnectionFollower::serviceOfHost(listedServices(), hostName);
    if (!service)
        return;
    setSelectedNetService(service);
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
    const bool deviceIsAskedForAgain = connection().followEnd(notification);
    updateUI();
    if (deviceIsAskedForAgain)
        showProgressIndicator();
}

void FVEPreferencePane::serverRespondedToConnectRequest(const Notification& notification)
{
    connection().heardRequest(notification);
    hideProgressIndicator();
    updateUI();
}

void FVEPreferencePane::requestingErrorMsgFromPrefPane(const Notification&)
{
    checkForConnectionError(nullptr);
    if (connectToOtherSheetController())
        connectToOtherSheetController()->serverCouldNotConnect();
}

void FVEPreferencePane::checkForConnectionError(Object* /*sender*/)
{
    connection().forgetRequest();
    setConnectErrorCheckTimer({});
    // The device may have died without a goodbye.
    mPlatform.discovery->checkAgain();
    // The card says already what went wrong.
    if (isFailure(connection().pairing().state))
        return;
    instructionsLabel()->setStringValue(localized(farview::connectionErrorText));
    warningImage()->setHidden(false);
    showConnectionHelp(true);
    setConnectErrorMessageTimer(
        scheduleOnce(errorMessageHold, [this] { errorMessageCanNowBeCleared(nullptr); }));
}

void FVEPreferencePane::errorMessageCanNowBeCleared(Object* /*sender*/)
{
    setConnectErrorMessageTimer({});
}

void FVEPreferencePane::clearConnectionError()
{
    instructionsLabel()->setStringValue(localized(farview::instructionsText));
    warningImage()->setHidden(true);
    showConnectionHelp(false);
}

void FVEPreferencePane::showProgressIndicator()
{
    setWidth(*virtualScreenSelectionPopup(), *placeholderForReducedPopupSize());
    mPlatform.runLoop->performAfterDelay(spinnerAppearanceDelay, weak_from_this(), [this] {
        showWaitingSpinner();
        // The server has answered already, and it is the user's turn.
        if (answersRequest(connection().pairing().state))
            hideProgressIndicator();
    });
    virtualScreenSelectionPopup()->setEnabled(false);
    setSpinningForServerTimer(
        scheduleOnce(spinnerSafetyDelay, [this] { hideProgressIndicator(); }));
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
    setWidth(*virtualScreenSelectionPopup(), *placeholderForFullPopupSize());
    setSpinningForServerTimer({});
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
    if (farview::switchIsOutOfStep(result, state)) {
        onOffSwitch()->setState(state == 0 ? 1 : 0, false);
        // A server that is no more asks nothing.
        if (state != 0)
            connection().forgetPairing();
        showPairing();
    }
    // Time passed: what the line about devices says may be due to change.
    updateDeviceHint();
}

FVEPreferencePane::WeakTimer FVEPreferencePane::scheduleOnce(Duration delay,
                                                             std::function<void()> operation)
{
    return mPlatform.runLoop->scheduledTimer(delay, false, weak_from_this(), std::move(operation));
}
