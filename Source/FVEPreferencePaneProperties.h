#pragma once

#include "Common/Bonjour/QLNBonjourBrowser.h"
#include "Common/ConnectionFollower.h"
#include "Common/Rules/AutoConnectRows.h"
#include "Platform/NetService.h"
#include "Platform/Types/URL.h"
#include "Source/FVEPreferencePaneOutlets.h"
#include "Source/WeakTimer.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace farview
{
class AlertPresenter;
}

/// What the pane knows beside its controls. Properties without a side effect; the pane itself adds
/// those that have one.
class FVEPreferencePaneProperties : public FVEPreferencePaneOutlets
{
public:
    using OptionalURL = std::optional<farview::URL>;
    using Rows = std::vector<farview::DeviceRow>;
    using WeakTimer = ::WeakTimer;

    explicit FVEPreferencePaneProperties(farview::Platform& platform) : mConnection(platform) {}

    /// The rows of the auto-connect table (the setting of that name holds names only).
    const Rows& autoConnectDevices() const { return mAutoConnectDevices; }
    void setAutoConnectDevices(Rows rows) { mAutoConnectDevices = std::move(rows); }

    /// Made at each showing.
    const std::shared_ptr<QLNBonjourBrowser>& bonjourBrowser() const { return mBonjourBrowser; }
    void setBonjourBrowser(std::shared_ptr<QLNBonjourBrowser> browser)
    {
        mBonjourBrowser = std::move(browser);
    }

    /// The devices that it has found; none before the first showing.
    const QLNBonjourBrowser::ServiceList& listedServices() const;

    /// Loads the windows that the pane opens later; without one they stay closed.
    const std::shared_ptr<farview::InterfaceLoader>& interfaceLoader() const
    {
        return mInterfaceLoader;
    }
    void setInterfaceLoader(std::shared_ptr<farview::InterfaceLoader> loader)
    {
        mInterfaceLoader = std::move(loader);
    }
    /// Shows the pane's questions; without one each is taken for declined.
    void setAlertPresenter(std::shared_ptr<farview::AlertPresenter> presenter)
    {
        mAlertPresenter = std::move(presenter);
    }
    /// Where the bundle's parts lie; nothing until the view was loaded.
    const OptionalURL& screenServerApplication() const { return mScreenServerApplication; }
    void setScreenServerApplication(OptionalURL url) { mScreenServerApplication = std::move(url); }
    const OptionalURL& statusItemApplication() const { return mStatusItemApplication; }
    void setStatusItemApplication(OptionalURL url) { mStatusItemApplication = std::move(url); }
    const OptionalURL& documentation() const { return mDocumentation; }
    void setDocumentation(OptionalURL url) { mDocumentation = std::move(url); }
    const OptionalURL& installerURL() const { return mInstallerURL; }
    void setInstallerURL(OptionalURL url) { mInstallerURL = std::move(url); }
    const OptionalURL& displayResolutionsOnURL() const { return mDisplayResolutionsOnURL; }
    void setDisplayResolutionsOnURL(OptionalURL url) { mDisplayResolutionsOnURL = std::move(url); }
    const OptionalURL& displayResolutionsOffURL() const { return mDisplayResolutionsOffURL; }
    void setDisplayResolutionsOffURL(OptionalURL url)
    {
        mDisplayResolutionsOffURL = std::move(url);
    }

    /// Decided once, when the view is loaded.
    bool videoDriverInstalled() const { return mVideoDriverInstalled; }
    void setVideoDriverInstalled(bool flag) { mVideoDriverInstalled = flag; }

    /// The server's connection was made by address, and to which one.
    bool connectedToOtherDevice() const { return mConnection.isByAddress(); }
    void setConnectedToOtherDevice(bool flag) { mConnection.setIsByAddress(flag); }
    const std::optional<std::string>& connectedToOtherDeviceIPString() const
    {
        return mConnection.address();
    }
    void setConnectedToOtherDeviceIPString(std::optional<std::string> address)
    {
        mConnection.setAddress(std::move(address));
    }
    /// What the user asked the server for, and what the pane follows of it.
    farview::ConnectionFollower& connection() { return mConnection; }

    /// The timers belong to the run loop. A setter ends the timer held before; null only ends it.
    const WeakTimer& spinningForServerTimer() const { return mSpinningForServerTimer; }
    void setSpinningForServerTimer(const WeakTimer& timer);
    const WeakTimer& connectErrorCheckTimer() const { return mConnectErrorCheckTimer; }
    void setConnectErrorCheckTimer(const WeakTimer& timer);
    const WeakTimer& connectErrorMessageTimer() const { return mConnectErrorMessageTimer; }
    void setConnectErrorMessageTimer(const WeakTimer& timer);
    const WeakTimer& watchdogTimer() const { return mWatchdogTimer; }
    void setWatchdogTimer(const WeakTimer& timer);

protected:
    const std::shared_ptr<farview::AlertPresenter>& alertPresenter() const
    {
        return mAlertPresenter;
    }

private:
    Rows mAutoConnectDevices;
    WeakTimer mSpinningForServerTimer;
    std::shared_ptr<QLNBonjourBrowser> mBonjourBrowser;
    std::shared_ptr<farview::InterfaceLoader> mInterfaceLoader;
    std::shared_ptr<farview::AlertPresenter> mAlertPresenter;
    OptionalURL mScreenServerApplication;
    OptionalURL mStatusItemApplication;
    OptionalURL mDocumentation;
    OptionalURL mInstallerURL;
    OptionalURL mDisplayResolutionsOnURL;
    OptionalURL mDisplayResolutionsOffURL;
    bool mVideoDriverInstalled = false;
    WeakTimer mConnectErrorCheckTimer;
    WeakTimer mConnectErrorMessageTimer;
    WeakTimer mWatchdogTimer;
    farview::ConnectionFollower mConnection;
};
