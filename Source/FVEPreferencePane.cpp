#include "Source/FVEPreferencePane.h"

#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/FVEPreferences.h"
#include "Common/Registry/QLNRegistryExplorer.h"
#include "Platform/Accessibility.h"
#include "Platform/Bundle.h"
#include "Platform/Log.h"
#include "Platform/LoginItem.h"
#include "Platform/Platform.h"
#include "Platform/RunLoop.h"
#include "Platform/Workspace.h"
#include "Source/FVEConnectToOtherSheetController.h"
#include "Source/FurtherDevicesTable.h"
#include "Source/HiDPIChange.h"
#include "Source/SoftwareUpdates.h"

using farview::Object;
using farview::URL;
using farview::Workspace;

namespace
{

// Each goes on announcing to the pane what it finds, so a pane shown hundreds of times must not
// keep hundreds of them.
constexpr std::size_t mostEarlierBrowsers = 4;

} // namespace

FVEPreferencePane::FVEPreferencePane(farview::Platform& platform)
    : FVEAutoConnectTable(platform), mPlatform(platform),
      mHiDPIChange(std::make_unique<HiDPIChange>(platform, *this)),
      mFurtherDevices(std::make_shared<FurtherDevicesTable>(*this))
{
}

bool FVEPreferencePane::initWithBundle(std::shared_ptr<farview::Bundle> bundle)
{
    mBundle = std::move(bundle);
    return mBundle != nullptr;
}

std::string FVEPreferencePane::mainNibName() const { return "PreferencePane"; }

void FVEPreferencePane::mainViewDidLoad()
{
    auto& explorer = QLNRegistryExplorer::sharedExplorer();
    explorer.setCurrentPlane("IOService");
    setVideoDriverInstalled(explorer.findNamedIORegistryService(kFVEKextName).has_value());

    onOffSwitch()->setTarget(weak_from_this());
    onOffSwitch()->setAction({"onOffSliderPressed:"});
    showSwitchState();

    auto& preferences = FVEPreferences::sharedAppPrefs();
    autoMoveWindowsBack()->setState(preferences.autoMoveWindowsBackOption() ? 1 : 0);
    enableTouchDisplay()->setState(preferences.enableTouchDisplay() ? 1 : 0);
    autoConnect()->setState(preferences.autoConnectOption() ? 1 : 0);
    autoConnectAll()->setState(preferences.autoConnectAllDevices() ? 1 : 0);
    showAutoConnectTable(autoConnect()->state() != 0);
    autoConnectTable()->setEnabled(autoConnect()->state() == 1);
    autoConnectTable()->registerForDraggedTypes({kDeviceNameTableViewDataType});
    autoConnectTable()->setDataSource(weak_from_this());
    furtherDevicesTable()->setDataSource(mFurtherDevices);
    makeConnectToOtherSheetController();
    findResources();
    determineComponenVersionNumber();
    launchWatchdogTimer();
    needsWarningMessageFor9400_9600_And_LionProblem(); // leaves the registry's snapshot behind
}

void FVEPreferencePane::makeConnectToOtherSheetController()
{
    if (!connectToOtherSheetController())
        setConnectToOtherSheetController(
            std::make_shared<FVEConnectToOtherSheetController>(mPlatform));
    connectToOtherSheetController()->setPreferencePane(weak_from_this());
}

void FVEPreferencePane::willSelect()
{
    mOnShow = true;
    connection().forgetPairing();
    addObservers();
    auto& preferences = FVEPreferences::sharedAppPrefs();
    if (preferences.openPrefsInSettingsPane()) {
        preferences.setOpenPrefsInSettingsPane(false);
        tabView()->selectTabViewItemWithIdentifier("Settings");
    } else {
        tabView()->selectFirstTabViewItem(this);
    }
    enableHiDPIResolutions()->setState(preferences.enableHiDPIResolutions() ? 1 : 0);
    startAtLoginCheckbox()->setState(mPlatform.loginItem->isEnabled() ? 1 : 0);
    enableRetinaResolutions()->setState(preferences.areRetinaResolutionsEnabled() ? 1 : 0);
    mHiDPIChange->enableBox();
    makeBrowser();
    preferences.setupDefaultValues();
    autoUpdateCheckbox()->setState(preferences.autoUpdateOption() ? 1 : 0);
    updateUI();
    if (preferences.currentState() == 1)
        startServerProcess();
    if (preferences.showInMenuBar())
        startStatusItemProcess();
    connection().query();
    beginUpdates();
}

void FVEPreferencePane::didSelect()
{
    mPlatform.application->activateWithOptions(farview::Application::activateAllWindows |
                                               farview::Application::activateIgnoringOtherApps);
    buildDeviceList();
    mPlatform.accessibility->askWhetherEnabled(weak_from_this(), [this](bool isEnabled) {
        if (isEnabled)
            return;
        autoMoveWindowsBack()->setState(0);
        FVEPreferences::sharedAppPrefs().setAutoMoveWindowsBackOption(false);
    });
}

void FVEPreferencePane::willUnselect()
{
    if (connectToOtherSheetController())
        connectToOtherSheetController()->cancelButtonPressed(this);
    cancelAXPermissionRequest();
    mDiagnosisAlert.end();
    mHiDPIChange->closeWindow();
    if (mSoftwareUpdates)
        mSoftwareUpdates->end();
    mOnShow = false;
    removeObservers();
    writeDeviceList();
}

FVEPreferencePane::~FVEPreferencePane()
{
    removeObservers();
    releaseOutlets();
    setSpinningForServerTimer({});
    setConnectErrorCheckTimer({});
    setWatchdogTimer({});
    // The timer that holds an error on show is left alone: it is bound to the pane weakly and fires
    // into nothing.
    setConnectToOtherSheetController(nullptr);
    setConnectedToOtherDeviceIPString(std::nullopt);
    setReinstallDriversButton(nullptr);
}

void FVEPreferencePane::releaseOutlets()
{
    setOffTextButton(nullptr);
    setOnOffSwitch(nullptr);
    setOnTextButton(nullptr);
    setTabView(nullptr);
    setStatusLabel(nullptr);
    setStatusExplanationLabel(nullptr);
    setVirtualScreenSelectionPopup(nullptr);
    setAutoConnect(nullptr);
    setAutoConnectTable(nullptr);
    setAutoConnectDevices({});
    setAutoMoveWindowsBack(nullptr);
    setEnableHiDPIResolutions(nullptr);
    setEnableTouchDisplay(nullptr);
    setEnableRetinaResolutions(nullptr);
    setInstructionsLabel(nullptr);
    setMenuExtraCheckbox(nullptr);
    setWarningImage(nullptr);
    setAutoUpdateCheckbox(nullptr);
    setCheckNowForUpdateButton(nullptr);
    setPlaceholderForFullPopupSize(nullptr);
    setPlaceholderForReducedPopupSize(nullptr);
    setWaitingForServerIndicator(nullptr);
    setVersionNumberLabel(nullptr);
    setBonjourBrowser(nullptr);
    setSelectedNetService(nullptr);
    setScreenServerApplication(std::nullopt);
    setStatusItemApplication(std::nullopt);
    setDocumentation(std::nullopt);
    setInstallerURL(std::nullopt);
    setDisplayResolutionsOnURL(std::nullopt);
    setDisplayResolutionsOffURL(std::nullopt);
}

void FVEPreferencePane::showSwitchState()
{
    const long currentState = FVEPreferences::sharedAppPrefs().currentState();
    if (const auto state = farview::switchStateForCurrentState(currentState))
        onOffSwitch()->setState(*state, false);
}

void FVEPreferencePane::findResources()
{
    const auto location = [this](const char* name, const char* type) {
        const auto path = mBundle ? mBundle->pathForResource(name, type) : std::nullopt;
        return URL::fileURLWithPath(path.value_or(std::string{}));
    };
    setScreenServerApplication(location(kFVEScreenServerApplicationName, "app"));
    setStatusItemApplication(location(kFVEMenuExtraApplicationName, "app"));
    setDocumentation(location(kFVEDocumentationName, "pdf"));

    const auto address = infoText("QLNInstallerURL");
    setInstallerURL(address ? URL::URLWithString(*address) : std::nullopt);

    if (auto tool = helperToolURL(kFVEDisplayResolutionsOnApplicationName))
        setDisplayResolutionsOnURL(std::move(tool));
    if (auto tool = helperToolURL(kFVEDisplayResolutionsOffApplicationName))
        setDisplayResolutionsOffURL(std::move(tool));
}

FVEPreferencePane::OptionalURL FVEPreferencePane::helperToolURL(const char* name) const
{
    const auto path = mBundle ? mBundle->pathForResource(name, "") : std::nullopt;
    return path ? OptionalURL(URL::fileURLWithPath(*path)) : std::nullopt;
}

void FVEPreferencePane::makeBrowser()
{
    QLNBonjourBrowser::setBonjourServiceName(kVirtualScreenServiceName);
    if (bonjourBrowser())
        mEarlierBrowsers.push_back(bonjourBrowser());
    if (mEarlierBrowsers.size() > mostEarlierBrowsers)
        mEarlierBrowsers.pop_front();
    auto browser = std::make_shared<QLNBonjourBrowser>(*mPlatform.discovery, *mPlatform.runLoop,
                                                       *mPlatform.notificationCenter);
    browser->init();
    setBonjourBrowser(browser);
    browser->setMonitorTXTRecordUpdates(true);
    // A device that died without a goodbye since the last showing would stay listed.
    mPlatform.discovery->checkAgain();
}

void FVEPreferencePane::onTextPressed(Object* /*sender*/)
{
    hideProgressIndicator();
    auto& preferences = FVEPreferences::sharedAppPrefs();
    if (preferences.currentState() == 1)
        return;
    preferences.setCurrentState(1);
    onOffSwitch()->setState(1);
    startServerProcess();
    updateUI();
}

void FVEPreferencePane::offTextPressed(Object* /*sender*/)
{
    hideProgressIndicator();
    auto& preferences = FVEPreferences::sharedAppPrefs();
    if (preferences.currentState() == 0)
        return;
    preferences.setCurrentState(0);
    onOffSwitch()->setState(0);
    killServerProcess();
    setSelectedNetService(nullptr);
    updateUI();
}

void FVEPreferencePane::onOffSliderPressed(Object* sender) { onOffSwitchPressed(sender); }

void FVEPreferencePane::onOffSwitchPressed(Object* sender)
{
    // The slider sends the action; whoever forwards it may hand over the view around it.
    const auto* slider = dynamic_cast<QLNOnOff*>(sender);
    if (const auto* view = dynamic_cast<QLNOnOffView*>(sender))
        slider = view->slider().get();
    if (slider && slider->onOffValue() == 1.0)
        onTextPressed(sender);
    else
        offTextPressed(sender);
}

void FVEPreferencePane::prefsChanged(const farview::Notification& /*notification*/)
{
    followPreferences();
}

void FVEPreferencePane::followPreferences()
{
    auto& preferences = FVEPreferences::sharedAppPrefs();
    preferences.synchronize();
    if (preferences.currentState() == 0)
        connection().forgetRequest();
    showSwitchState();
    if (preferences.autoConnectOption() != (autoConnect()->state() == 1))
        autoConnect()->performClick(this);
    autoConnectAll()->setState(preferences.autoConnectAllDevices() ? 1 : 0);
    if (mSoftwareUpdates)
        mSoftwareUpdates->followOption();
    updateUI();
}

void FVEPreferencePane::startServerProcess() { launch(screenServerApplication()); }
void FVEPreferencePane::startStatusItemProcess() { launch(statusItemApplication()); }

/// False when it cannot be started.
bool FVEPreferencePane::launch(const OptionalURL& application)
{
    constexpr unsigned options = Workspace::launchAsync | Workspace::launchWithoutActivation |
                                 Workspace::launchWithoutAddingToRecents;
    const URL url = application.value_or(URL());
    const bool started = mPlatform.workspace->launchApplicationAtURL(url, options);
    if (!started)
        log("Cannot start the application at \"" + url.path() + "\"");
    return started;
}

void FVEPreferencePane::killServerProcess() { connection().quitServer(); }
void FVEPreferencePane::killStatusItemProcess() { connection().command(kTerminateMenuExtra); }

std::string FVEPreferencePane::localized(const std::string& text) const
{
    return mBundle && !text.empty() ? mBundle->localizedString(text, "", "") : text;
}

void FVEPreferencePane::log(const std::string& message)
{
    mPlatform.log->write(farview::LogLevel::warning, message);
}
