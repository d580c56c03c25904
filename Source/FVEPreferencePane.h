#pragma once

#include "Common/FVEConstants.h"
#include "Common/Rules/DeviceMenu.h"
#include "Common/Rules/StatusDisplay.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Updater.h"
#include "Source/FVEAutoConnectTable.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace farview
{
class Bundle;
struct Alert;
} // namespace farview

class FVEEnableHiDPIController;
class FurtherDevicesTable;
class HiDPIChange;
class SoftwareUpdates;

/// The panel: switches the system on and off, lets the user choose a device and follows the
/// connection to it. Made with `std::make_shared`; main thread only. The host calls
/// `initWithBundle`, connects the outlets, calls `mainViewDidLoad` once, then for each showing
/// `willSelect`, `didSelect` and, at its end, `willUnselect`. `platform` outlives the pane.
class FVEPreferencePane : public FVEAutoConnectTable,
                          public farview::Object,
                          public farview::UpdaterDelegate,
                          public std::enable_shared_from_this<FVEPreferencePane>
{
public:
    explicit FVEPreferencePane(farview::Platform& platform);
    ~FVEPreferencePane() override;

    bool respondsTo(farview::Selector selector) const override;
    bool perform(farview::Selector selector, farview::Object* argument) override;

    // Life. False when there is no bundle.
    bool initWithBundle(std::shared_ptr<farview::Bundle> bundle);
    std::string mainNibName() const;
    void mainViewDidLoad();
    void willSelect();
    void didSelect();
    void willUnselect();
    /// Between `willSelect` and `willUnselect`.
    bool isOnShow() const { return mOnShow; }
    std::string localized(const std::string& text) const override;

    // On and off.
    void onTextPressed(farview::Object* sender);
    void offTextPressed(farview::Object* sender);
    void onOffSliderPressed(farview::Object* sender);
    void onOffSwitchPressed(farview::Object* sender);
    void prefsChanged(const farview::Notification& notification);
    void applicationDidBecomeActive(const farview::Notification& notification);
    void startServerProcess();
    void startStatusItemProcess();
    void killServerProcess();
    void killStatusItemProcess();

    // The device menu.
    std::shared_ptr<farview::Menu> createVirtualScreensMenu();
    bool determineIfNoDevicesSelectedEnabled();
    const std::shared_ptr<farview::NetService>& selectedNetService() const
    {
        return mSelectedNetService;
    }
    std::optional<std::string> connectedName() const; ///< of the device, as the user knows it
    /// Also stores the host name of a device as the one in use.
    void setSelectedNetService(std::shared_ptr<farview::NetService> service);
    void takeNoVirtualScreenFrom(farview::Object* sender);
    void takeVirtualScreenFrom(farview::Object* sender);
    void takeVirtualOtherDeviceScreenFrom(farview::Object* sender);
    /// The way from the settings to the device list.
    void showDevices(farview::Object* sender);
    void virtualScreensDidChange(const farview::Notification& notification);
    void virtualScreensDidRemoveService(const farview::Notification& notification);
    void netServiceTXTRecordChanged(const farview::Notification& notification);

    /// Brings everything on show in line with the settings, the devices and the connection.
    void updateUI();

    // Following a connection.
    void serverConnectedToDeviceNotification(const farview::Notification& notification);
    void serverQueryResultNotification(const farview::Notification& notification);
    void serverDisconnectedFromDeviceNotification(const farview::Notification& notification);
    void serverRespondedToConnectRequest(const farview::Notification& notification);
    void requestingErrorMsgFromPrefPane(const farview::Notification& notification);
    void serverScreenDidChange(const farview::Notification& notification);
    void serverFurtherDevicesDidChange(const farview::Notification& notification);
    void pairedDevicesDidChange(const farview::Notification& notification);
    void serverPairingDidChange(const farview::Notification& notification);
    void checkForConnectionError(farview::Object* sender);
    void errorMessageCanNowBeCleared(farview::Object* sender);
    void clearConnectionError();
    void showProgressIndicator();
    void showWaitingSpinner();
    void hideProgressIndicator();
    void launchWatchdogTimer();
    void watchdogTimerOperation(farview::Object* sender);
    /// The user moved the device's screen in the picture of the screens.
    void screenPlaced(farview::Object* sender);
    void mayTypePressed(farview::Object* sender);
    void pairingYesPressed(farview::Object* sender);
    void pairingNoPressed(farview::Object* sender);

    // Options, help and updates.
    void menuExtraCheckboxPressed(farview::Object* sender);
    void startAtLoginPressed(farview::Object* sender);
    void enableTouchDisplayPressed(farview::Object* sender);
    void enableRetinaPressed(farview::Object* sender);
    void enableHiDPIPressed(farview::Object* sender);
    /// Always false, and `error` stays as it was: how it ends is in the log.
    bool authExecuteHelperWithToolURL(const OptionalURL& tool, std::string* error);
    /// The window that asks whether to change the setting; null while there is none.
    const std::shared_ptr<FVEEnableHiDPIController>& enableHiDPIController() const;
    void autoMoveWindowsBackPressed(farview::Object* sender);
    /// The user's answer to the question for accessibility, which `autoMoveWindowsBack` needs.
    void requestAXPermissionDidEnd(const farview::Alert& alert, int returnCode, void* contextInfo);
    void reinstallDriversPressed(farview::Object* sender);
    void helpPressed(farview::Object* sender);
    /// Starts the diagnosis in a window of its own.
    void diagnosePressed(farview::Object* sender);
    void checkNowForUpdatePressed(farview::Object* sender);
    void autoUpdatePressed(farview::Object* sender);
    void didChangeStatus(farview::Updater& updater) override;
    void willInstallUpdate(farview::Object* updater, farview::Object* item) override;
    /// What the pane does about updates; null until it is shown.
    const std::shared_ptr<SoftwareUpdates>& softwareUpdates() const { return mSoftwareUpdates; }
    std::string bundleVersion() const { return infoText("CFBundleVersion").value_or(""); }
    void determineComponenVersionNumber();
    bool needsWarningMessageFor9400_9600_And_LionProblem();

private:
    void log(const std::string& message);
    void makeConnectToOtherSheetController();
    void showSwitchState();
    void requestAXPermission();
    void cancelAXPermissionRequest();
    void findResources();
    OptionalURL helperToolURL(const char* name) const;
    std::optional<std::string> infoText(const char* key) const;
    std::string instructionsText(const std::string& text) const;
    void addObservers();
    void removeObservers();
    void observeLosses();
    void makeBrowser();
    bool launch(const OptionalURL& application);
    void followPreferences();
    void releaseOutlets();
    void beginUpdates();
    farview::DeviceMenuInputs deviceMenuInputs();
    std::shared_ptr<farview::MenuItem> menuItem(const farview::MenuEntry& entry);
    void requestConnection(const farview::NetService& service);

    void showPopUp(farview::PopUpDisplay display);
    void selectEntryInForce();
    void enableSelectedEntry();
    void showInstructions(const farview::StatusDisplay& display);
    void showDriverMissing();
    void updateDeviceHint();
    std::string connectedText();
    std::string screenText();
    std::string searchText(const farview::DiscoveryHintInputs& inputs);
    std::string connectedDevice() const;
    void showScreen(bool isOn);
    void showPairing();
    void delayYes();
    void confirmAnew(const std::string& device);
    bool searchesInVain(bool waits);
    void showConnectionHelp(bool isShown);

    bool isAcceptable(const farview::Notification& notification);
    void followConnectionToDevice(const std::string* hostName);
    void selectDeviceOfHost(const std::string* hostName);
    void queryResultLater(const farview::Notification& notification);
    WeakTimer scheduleOnce(farview::Duration delay, std::function<void()> operation);

    farview::Platform& mPlatform;
    std::shared_ptr<farview::Bundle> mBundle;
    std::optional<farview::Subscription> mAXPermissionRequest;
    farview::Subscription mDiagnosisAlert;
    std::shared_ptr<farview::NetService> mSelectedNetService;
    /// Browsers of earlier showings: they go on searching, the latest few of them.
    std::deque<std::shared_ptr<QLNBonjourBrowser>> mEarlierBrowsers;
    farview::Subscription mReconnection;
    farview::Subscription mDiscoveryCondition;
    std::unique_ptr<HiDPIChange> mHiDPIChange;
    std::shared_ptr<SoftwareUpdates> mSoftwareUpdates;
    std::shared_ptr<FurtherDevicesTable> mFurtherDevices;
    int mQueryResultsWaiting = 0;
    std::optional<farview::Duration> mSearchBegan;      ///< nothing while nothing is waited for
    std::int32_t mRequestedPort = kMainDataTrafficPort; ///< of the device asked for last
    bool mOnShow = false;
};
