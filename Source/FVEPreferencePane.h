#pragma once

#include "Common/Rules/DeviceMenu.h"
#include "Common/Rules/StatusDisplay.h"
#include "Platform/NotificationCenter.h"
#include "Source/FVEPreferencePaneProperties.h"

#include <deque>
#include <memory>
#include <string>

namespace farview
{
class Bundle;
struct Platform;
} // namespace farview

/// The panel: switches the system on and off, lets the user choose a device and follows the
/// connection to it. Made with `std::make_shared`; main thread only. The host calls
/// `initWithBundle`, connects the outlets, calls `mainViewDidLoad` once, then for each showing
/// `willSelect`, `didSelect` and, at its end, `willUnselect`. `platform` outlives the pane.
class FVEPreferencePane : public FVEPreferencePaneProperties,
                          public farview::Object,
                          public farview::TableDataSource,
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

    /// Loads the windows that the pane opens later; without one they stay closed.
    const std::shared_ptr<farview::InterfaceLoader>& interfaceLoader() const
    {
        return mInterfaceLoader;
    }
    void setInterfaceLoader(std::shared_ptr<farview::InterfaceLoader> loader)
    {
        mInterfaceLoader = std::move(loader);
    }
    /// That text in the user's language.
    std::string localized(const std::string& text) const;

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
    const std::shared_ptr<farview::NetService>& selectedNetService() const
    {
        return mSelectedNetService;
    }
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
    void checkForConnectionError(farview::Object* sender);
    void errorMessageCanNowBeCleared(farview::Object* sender);
    void clearConnectionError();
    void showProgressIndicator();
    void showWaitingSpinner();
    void hideProgressIndicator();
    void launchWatchdogTimer();
    void watchdogTimerOperation(farview::Object* sender);

    // The auto-connect table.
    static std::string applicationSupportFolder();
    std::string seenDevicesFilename() const;
    int countOfCheckedDevices() const;
    void buildDeviceList();
    void writeDeviceList();
    bool determineIfNoDevicesSelectedEnabled();
    void autoConnectPressed(farview::Object* sender);
    int numberOfRowsInTableView(farview::TableView& table) override;
    farview::CellValue objectValueForTableColumn(farview::TableView& table, std::string_view column,
                                                 int row) override;
    void setObjectValue(farview::TableView& table, const farview::CellValue& value,
                        std::string_view column, int row) override;
    bool writeRowsWithIndexes(farview::TableView& table, const farview::IndexSet& indexes,
                              farview::Pasteboard& pasteboard) override;
    farview::DragOperation validateDrop(farview::TableView& table,
                                        const farview::DraggingInfo& info, int row,
                                        farview::DropOperation operation) override;
    bool acceptDrop(farview::TableView& table, const farview::DraggingInfo& info, int row,
                    farview::DropOperation operation) override;
    void tableViewSelectionIsChanging(const farview::Notification& notification) override;

    // Options, help and updates.
    void menuExtraCheckboxPressed(farview::Object* sender);
    void startAtLoginPressed(farview::Object* sender);
    void enableTouchDisplayPressed(farview::Object* sender);
    void enableRetinaPressed(farview::Object* sender);
    void enableHiDPIPressed(farview::Object* sender);
    void autoMoveWindowsBackPressed(farview::Object* sender);
    void reinstallDriversPressed(farview::Object* sender);
    void helpPressed(farview::Object* sender);
    void checkNowForUpdatePressed(farview::Object* sender);
    void autoUpdatePressed(farview::Object* sender);
    void willInstallUpdate(farview::Object* updater, farview::Object* item);
    void determineComponenVersionNumber();
    bool needsWarningMessageFor9400_9600_And_LionProblem();

private:
    /// Tells another program what to do: at once, in all the user's sessions.
    void command(const char* name, farview::DistributedNotificationCenter::TextUserInfo userInfo);
    void log(const std::string& message);

    void makeConnectToOtherSheetController();
    void showSwitchState();
    void showAutoConnectTable(bool shown);
    bool isChosenRow(std::int64_t row) const;
    void findResources();
    OptionalURL helperToolURL(const char* name) const;
    void addObservers();
    void removeObservers();
    void observeLosses();
    void makeBrowser();
    void launch(const OptionalURL& application);
    void followPreferences();
    void queryConnectedHost();
    void releaseOutlets();

    const QLNBonjourBrowser::ServiceList& listedServices() const;
    farview::DeviceMenuInputs deviceMenuInputs();
    std::shared_ptr<farview::MenuItem> menuItem(const farview::MenuEntry& entry);
    void requestConnection(const farview::NetService& service);

    void showPopUp(farview::PopUpDisplay display);
    void selectEntryInForce();
    void enableSelectedEntry();
    void showInstructions(const farview::StatusDisplay& display);
    void showDriverMissing();
    void updateDeviceHint();

    bool isAcceptable(const farview::Notification& notification);
    void followConnectionByAddress(const farview::Notification& notification);
    void followConnectionToDevice(const std::string* hostName);
    void selectDeviceOfHost(const std::string* hostName);
    void queryResultLater(const farview::Notification& notification);
    void setPopUpWidth(const farview::View& placeholder);
    WeakTimer scheduleOnce(farview::Duration delay, void (FVEPreferencePane::*operation)());
    WeakTimer scheduleOnce(farview::Duration delay,
                           void (FVEPreferencePane::*operation)(farview::Object*));

    farview::Platform& mPlatform;
    std::shared_ptr<farview::Bundle> mBundle;
    std::shared_ptr<farview::InterfaceLoader> mInterfaceLoader;
    std::shared_ptr<farview::NetService> mSelectedNetService;
    /// Browsers of earlier showings: they go on searching, the latest few of them.
    std::deque<std::shared_ptr<QLNBonjourBrowser>> mEarlierBrowsers;
    farview::Subscription mReconnection;
    farview::Subscription mDiscoveryCondition;
    int mQueryResultsWaiting = 0;
    bool mListWasBuilt = false;
    bool mOnShow = false;
};
