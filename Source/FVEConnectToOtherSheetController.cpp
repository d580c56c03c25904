#include "Source/FVEConnectToOtherSheetController.h"

#include "Common/FVEDistributedNotifications.h"
#include "Common/FVEPreferences.h"
#include "Common/NSString_Additions.h"
#include "Controls/OperationTable.h"
#include "Platform/Log.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Source/FVEPreferencePane.h"

#include <array>

using farview::Duration;
using farview::Notification;
using farview::Object;
using farview::Selector;
using Role = farview::TextField::Role;

namespace
{

using Sheet = FVEConnectToOtherSheetController;

constexpr Duration connectionAttemptLimit{120.0};
constexpr Duration dismissalDelay{0.5};
constexpr int returnCodeCancelled = 0;
constexpr int returnCodeConnected = 1;

template <auto method> constexpr auto action(std::string_view name)
{
    return farview::action<method, Sheet>(name);
}

template <auto method> constexpr auto observer(std::string_view name)
{
    return farview::observer<method, Sheet>(name);
}

constexpr auto operations = std::to_array<farview::Operation<Sheet>>({
    action<&Sheet::showConnectToOtherSheet>("showConnectToOtherSheet:"),
    action<&Sheet::okButtonPressed>("okButtonPressed:"),
    action<&Sheet::cancelButtonPressed>("cancelButtonPressed:"),
    action<&Sheet::connectionAttemptTimoutTimerOperation>("connectionAttemptTimoutTimerOperation:"),
    observer<&Sheet::ipAddresTextDidChange>("ipAddresTextDidChange:"),
    observer<&Sheet::serverConnectedToDeviceNotification>("serverConnectedToDeviceNotification:"),
});

constexpr auto outletTable = std::to_array<farview::Outlet>({
    farview::outlet<&Sheet::otherDevicePanel>("otherDevicePanel"),
    farview::outlet<&Sheet::otherTextField>("otherTextField"),
    farview::outlet<&Sheet::connectToOtherExplanationText>("connectToOtherExplanationText"),
    farview::outlet<&Sheet::connectToOtherOKButton>("connectToOtherOKButton"),
    farview::outlet<&Sheet::connectToOtherProgress>("connectToOtherProgress"),
});

struct Registration {
    const char* name;
    Selector selector;
};

// What the pane does not hear while the sheet is up.
constexpr std::array paneRegistrations = {
    Registration{kQueryResultForConnectedHost, {"serverQueryResultNotification:"}},
    Registration{kServerConnectedToDevice, {"serverConnectedToDeviceNotification:"}},
};

} // namespace

FVEConnectToOtherSheetController::FVEConnectToOtherSheetController(farview::Platform& platform)
    : mPlatform(platform)
{
}

FVEConnectToOtherSheetController::~FVEConnectToOtherSheetController()
{
    setConnectionAttemptTimoutTimer({});
}

std::span<const farview::Outlet> FVEConnectToOtherSheetController::outlets() const
{
    return outletTable;
}

bool FVEConnectToOtherSheetController::respondsTo(Selector selector) const
{
    return farview::findOperation<Sheet>(operations, selector) != nullptr;
}

bool FVEConnectToOtherSheetController::perform(Selector selector, Object* argument)
{
    const auto* operation = farview::findOperation<Sheet>(operations, selector);
    if (!operation)
        return false;
    operation->call(*this, argument);
    return true;
}

bool FVEConnectToOtherSheetController::loadNib()
{
    if (otherDevicePanel())
        return true;
    const auto pane = preferencePane();
    std::string error = "nothing loads it";
    const auto loader = pane ? pane->interfaceLoader() : nullptr;
    if (!loader || !loader->loadNibNamed("ConnectToOtherSheet", shared_from_this(), error)) {
        log("Cannot open the sheet for connecting by address: " + error);
        setOtherDevicePanel(nullptr);
        return false;
    }
    const std::weak_ptr<farview::TextField> weakField = otherTextField();
    mTyping = otherTextField()->observe([this, weakField](farview::Change change) {
        const auto field = weakField.lock();
        if (field && change == farview::Change::typedText)
            mPlatform.notificationCenter->postNotificationName(kControlTextDidChangeNotification,
                                                               field.get(), {});
    });
    return true;
}

void FVEConnectToOtherSheetController::showConnectToOtherSheet(Object* /*sender*/)
{
    const auto pane = preferencePane();
    if (isOpen() || !pane || !loadNib())
        return;
    mShowing = std::make_shared<Showing>();
    prepareControls();
    addObservers();
    takePaneOffTheServer();
    otherDevicePanel()->beginSheet(pane->tabView());
}

void FVEConnectToOtherSheetController::prepareControls()
{
    const std::string last = FVEPreferences::sharedAppPrefs().lastOtherDevice();
    otherTextField()->setStringValue(last);
    if (!last.empty())
        otherTextField()->selectText();
    connectToOtherOKButton()->setEnabled(addressIsValid());
    connectToOtherProgress()->setTextRole(Role::normal);
    connectToOtherProgress()->setStringValue(localized("Connecting..."));
    connectToOtherProgress()->setHidden(true);
}

void FVEConnectToOtherSheetController::addObservers()
{
    mPlatform.notificationCenter->addObserver(
        weak_from_this(), farview::performing(weak_from_this(), {"ipAddresTextDidChange:"}),
        kControlTextDidChangeNotification, otherTextField().get());
    mPlatform.distributedNotificationCenter->addObserver(
        weak_from_this(),
        farview::performing(weak_from_this(), {"serverConnectedToDeviceNotification:"}),
        kServerConnectedToDevice, "");
}

void FVEConnectToOtherSheetController::takePaneOffTheServer()
{
    for (const auto& each : paneRegistrations)
        mPlatform.distributedNotificationCenter->removeObserver(mPreferencePane, each.name, "");
}

void FVEConnectToOtherSheetController::putPaneBackOnTheServer()
{
    const auto pane = preferencePane();
    // A pane that is not on show hears nothing of the server; it asks when it is shown again.
    if (!pane || !pane->isOnShow())
        return;
    for (const auto& each : paneRegistrations)
        mPlatform.distributedNotificationCenter->addObserver(
            pane, farview::performing(pane, each.selector), each.name, "");
}

bool FVEConnectToOtherSheetController::addressIsValid() const
{
    return isValidIPAddress(otherTextField()->stringValue());
}

void FVEConnectToOtherSheetController::ipAddresTextDidChange(const Notification& /*notification*/)
{
    connectToOtherProgress()->setTextRole(Role::normal);
    connectToOtherProgress()->setStringValue("");
    connectToOtherOKButton()->setEnabled(addressIsValid());
    connectToOtherOKButton()->setTitle(localized("OK"));
}

void FVEConnectToOtherSheetController::okButtonPressed(Object* /*sender*/)
{
    if (!isOpen())
        return;
    connectToOtherProgress()->setTextRole(Role::normal);
    if (!addressIsValid())
        return;
    const std::string address = otherTextField()->stringValue();
    launchConnectionAttemptTimoutTimer();
    connectToOtherOKButton()->setEnabled(false);
    // Typing or a time-out since the sheet opened has left another text there.
    connectToOtherProgress()->setStringValue(localized("Connecting..."));
    connectToOtherProgress()->setHidden(false);
    requestConnection(address);
}

void FVEConnectToOtherSheetController::requestConnection(const std::string& address)
{
    if (const auto pane = preferencePane()) {
        pane->setConnectedToOtherDevice(false);
        pane->setConnectedToOtherDeviceIPString(address);
        pane->connection().connectToAddress(address);
    }
}

void FVEConnectToOtherSheetController::launchConnectionAttemptTimoutTimer()
{
    setConnectionAttemptTimoutTimer(
        mPlatform.runLoop->scheduledTimer(connectionAttemptLimit, true, weak_from_this(), [this] {
            connectionAttemptTimoutTimerOperation(nullptr);
        }));
}

void FVEConnectToOtherSheetController::endWait()
{
    const auto pane = preferencePane();
    if (pane && !mConnectionAttemptTimoutTimer.expired())
        pane->connection().forgetRequest();
    setConnectionAttemptTimoutTimer({});
}

void FVEConnectToOtherSheetController::connectionAttemptTimoutTimerOperation(Object* /*sender*/)
{
    if (!isOpen())
        return;
    log("Timed out waiting to connect.");
    showFailure();
}

void FVEConnectToOtherSheetController::serverCouldNotConnect()
{
    if (!mConnectionAttemptTimoutTimer.expired())
        showFailure();
}

void FVEConnectToOtherSheetController::giveWay()
{
    if (!isOpen() || connectToOtherProgress()->isHidden())
        return;
    // Something answered there.
    FVEPreferences::sharedAppPrefs().setLastOtherDevice(otherTextField()->stringValue());
    cancelButtonPressed(nullptr);
}

void FVEConnectToOtherSheetController::showFailure()
{
    connectToOtherOKButton()->setTitle(localized("Retry"));
    connectToOtherProgress()->setStringValue(localized("Could not connect..."));
    connectToOtherProgress()->setTextRole(Role::error);
    connectToOtherOKButton()->setEnabled(true);
    connectToOtherOKButton()->setHidden(false);
    connectToOtherProgress()->setHidden(false);
    if (!otherTextField()->stringValue().empty())
        FVEPreferences::sharedAppPrefs().setLastOtherDevice(otherTextField()->stringValue());
    endWait();
}

void FVEConnectToOtherSheetController::serverConnectedToDeviceNotification(
    const Notification& notification)
{
    if (!isOpen())
        return;
    endWait();
    const auto pane = preferencePane();
    const auto* name = notification.text(kDeviceNameKey);
    if (pane && name && *name == kOtherDeviceName) {
        connectToOtherProgress()->setStringValue(localized("Connected..."));
        storeAddressInUse(*pane, notification.text(kDeviceAddressKey));
        pane->serverConnectedToDeviceNotification(notification);
    }
    dismissLater();
}

/// A report that differs from what the pane knows is of a connection that somebody else asked for.
void FVEConnectToOtherSheetController::storeAddressInUse(FVEPreferencePane& pane,
                                                         const std::string* reported)
{
    if (pane.connectedToOtherDeviceIPString() && reported && isValidIPAddress(*reported))
        pane.setConnectedToOtherDeviceIPString(*reported);
    auto& preferences = FVEPreferences::sharedAppPrefs();
    if (const auto& address = pane.connectedToOtherDeviceIPString())
        preferences.setCurrentVirtualScreenDevice(*address);
    else
        preferences.setCurrentVirtualScreenDevice(std::nullopt);
}

void FVEConnectToOtherSheetController::dismissLater()
{
    // Handling the report may have closed the sheet.
    if (!isOpen() || mShowing->dismissalPending)
        return;
    mShowing->dismissalPending = true;
    mPlatform.runLoop->performAfterDelay(dismissalDelay, mShowing,
                                         [this] { dismissSheetWithButton(returnCodeConnected); });
}

void FVEConnectToOtherSheetController::cancelButtonPressed(Object* /*sender*/)
{
    if (!isOpen())
        return;
    connectToOtherProgress()->setTextRole(Role::normal);
    endWait();
    if (const auto pane = preferencePane())
        pane->updateUI();
    dismissSheetWithButton(returnCodeCancelled);
}

void FVEConnectToOtherSheetController::dismissSheetWithButton(int returnCode)
{
    if (!isOpen())
        return;
    mShowing.reset();
    // "Retry" may have been pressed while a late report was closing the sheet.
    endWait();
    mPlatform.notificationCenter->removeObserver(weak_from_this());
    mPlatform.distributedNotificationCenter->removeObserver(weak_from_this());
    putPaneBackOnTheServer();
    otherDevicePanel()->endSheet(returnCode);
    otherDevicePanel()->orderOut();
}

std::string FVEConnectToOtherSheetController::localized(const std::string& text) const
{
    const auto pane = preferencePane();
    return pane ? pane->localized(text) : text;
}

void FVEConnectToOtherSheetController::log(const std::string& message)
{
    mPlatform.log->write(farview::LogLevel::warning, message);
}
