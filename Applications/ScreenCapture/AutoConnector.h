#pragma once

#include "Applications/ScreenCapture/DeviceTarget.h"
#include "Common/Bonjour/QLNBonjourBrowser.h"
#include "Common/FVEPreferences.h"
#include "Common/PairedPeers.h"
#include "Common/Rules/AutoConnectChoice.h"
#include "Platform/Desktop/Bus/GrowingPause.h"
#include "Platform/NetService.h"
#include "Platform/NotificationCenter.h"
#include "Platform/RunLoop.h"
#include "Platform/Types/Subscription.h"

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace farview
{

/// What auto-connection needs of the server.
class AutoConnectServer
{
public:
    virtual ~AutoConnectServer() = default;
    /// Whether nothing is connected and nothing is under way.
    virtual bool isIdle() const = 0;
    /// The host name or the address of the device that the user chose; empty when there is none.
    virtual std::string chosenDevice() const = 0;
    /// Whether a device is connected, and others may be used beside it.
    virtual bool takesFurther() const = 0;
    /// Whether the device of that host is used, or is to be.
    virtual bool uses(const std::string& hostName) const = 0;
    /// Begins to connect to a device, of which one endpoint at least is known; beside the first one
    /// when there is one. What becomes of it is told to the connector.
    virtual void connectByItself(const DeviceTarget& target) = 0;
    /// A ticked device would be connected to, had the user ever confirmed it; empty: no longer.
    virtual void strangerIsInSight(const std::string& serviceName) = 0;
};

/// Connects the server by itself while it is idle: back to the device that the user chose, else,
/// while the user wants auto-connection, to the first of the ticked devices that is there, free and
/// confirmed under its name (`PairedPeers`); while the user wants all of them, to the others as
/// well. As long as a chosen device is in sight, nothing else is connected to.
///
/// A device that failed is tried again after a pause that grows; the next one of the list at once,
/// and so is one that appears. The devices in sight when the user chose none are left alone until
/// the user chooses them, or they go and return. Made with `std::make_shared`. Main thread only.
class AutoConnector final : public std::enable_shared_from_this<AutoConnector>
{
public:
    /// What it works with; all of it outlives the connector.
    struct Services {
        Discovery& discovery;
        RunLoop& runLoop;
        NotificationCenter& localCenter;
        FVEPreferences& preferences;
        const PairedPeers& paired;
    };

    /// Between rounds of attempts: the first pause, and the longest it grows to.
    static constexpr Duration firstPause{2.0};
    static constexpr Duration longestPause{60.0};
    /// A connection that held that long makes the next pause the first again.
    static constexpr Duration steadyAfter{10.0};
    /// How long the network is looked at before the first choice, so that the fastest device is not
    /// taken for the first of the list.
    static constexpr Duration settling{1.0};

    /// `server` outlives the connector.
    AutoConnector(Services services, AutoConnectServer& server);

    /// Begins. Called once, right after `browser` began to search; makes it watch the TXT records.
    void start(std::shared_ptr<QLNBonjourBrowser> browser);

    void preferencesChanged();
    void pairedDevicesChanged() { considerSoon(); }
    /// The user asked for the device of that host: it is no longer left alone.
    void userChose(const std::string& hostName);
    /// The user wants no device: those in sight are left alone.
    void userChoseNone();

    /// The user does not want that device any more: it is left alone.
    void userChoseNot(const std::string& hostName);

    /// An attempt to reach the device of that host failed, whoever had asked for it.
    void attemptFailed(const std::string& hostName);
    void connectionBegan();
    void furtherBegan() { considerSoon(); }
    void connectionEnded(const std::string& hostName);

private:
    using Names = std::unordered_set<std::string>;
    using ServiceList = QLNBonjourBrowser::ServiceList;

    void settle();
    void observeBrowser();
    ServiceList servicesOfHost(const std::string& hostName) const;
    void devicesLeft(const Notification& notification);
    void conditionChanged();
    bool isWanted();
    void welcome(const NetService& service);
    void considerSoon();
    void consider();
    bool bringBack();
    Names strangers(const ServiceList& services) const;
    Names heldOff(const ServiceList& services) const;
    std::optional<DeviceTarget> choice(const ServiceList& services, const Names& heldOff) const;
    bool tryOnce(const std::string& name, const DeviceTarget& target);
    void pause();
    void tryAgain();
    void startAfresh();
    void forgetFailures();

    Services mServices;
    AutoConnectServer& mServer;
    std::shared_ptr<QLNBonjourBrowser> mBrowser;
    Subscription mCondition;
    PropertyList::Array mChosen;
    /// Names of devices that failed since the last pause.
    Names mTried;
    Names mLeftAlone;
    GrowingPause mPause{firstPause, longestPause};
    std::weak_ptr<Timer> mRetry;
    Duration mConnectedAt{0};
    bool mWasWanted = false;
    bool mIsSettling = false;
    bool mHasSettled = false;
    bool mWillConsider = false;
};

} // namespace farview
