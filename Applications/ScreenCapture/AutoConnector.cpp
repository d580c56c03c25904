#include "Applications/ScreenCapture/AutoConnector.h"

#include "Common/Bonjour/DeviceState.h"
#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/NSString_Additions.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace farview
{

namespace
{

constexpr long stateOn = 1;
/// How long a device that failed may take to say where it is now.
constexpr Duration resolveLimit{5.0};

std::vector<AnnouncedDevice> announcedDevices(const QLNBonjourBrowser::ServiceList& services)
{
    std::vector<AnnouncedDevice> devices;
    devices.reserve(services.size());
    for (const auto& service : services) {
        const bool reachable = service->hostName() && !service->endpoints().empty();
        devices.push_back({service->name(), isDeviceInUse(*service), reachable});
    }
    return devices;
}

} // namespace

AutoConnector::AutoConnector(Services services, AutoConnectServer& server)
    : mServices(services), mServer(server)
{
}

void AutoConnector::start(std::shared_ptr<QLNBonjourBrowser> browser)
{
    mBrowser = std::move(browser);
    mBrowser->setMonitorTXTRecordUpdates(true);
    observeBrowser();
    mCondition = mServices.discovery.observeCondition([this] { conditionChanged(); });
    mChosen = mServices.preferences.autoConnectDevices();
    mWasWanted = isWanted();
    settle();
}

void AutoConnector::settle()
{
    if (mServices.discovery.condition() == DiscoveryCondition::starting ||
        std::exchange(mIsSettling, true))
        return;
    mServices.runLoop.performAfterDelay(settling, weak_from_this(), [this] {
        mHasSettled = true;
        consider();
    });
}

void AutoConnector::observeBrowser()
{
    const auto observe = [this](const char* name, NotificationHandler handler) {
        mServices.localCenter.addObserver(weak_from_this(), std::move(handler), name,
                                          mBrowser.get());
    };
    for (const char* name : {kQLNBonjourBrowserDidAddService, kQLNBonjourBrowserDidUpdateService,
                             kQLNBonjourBrowserDidUpdateTXTRecord})
        observe(name, [this](const Notification&) { considerSoon(); });
    observe(kQLNBonjourBrowserDidRemoveService,
            [this](const Notification& notification) { devicesLeft(notification); });
}

// --- what happens around it ------------------------------------------------------------------

/// Whoever returns is a new device: nothing that was remembered holds it off.
void AutoConnector::devicesLeft(const Notification& notification)
{
    const auto& userInfo = notification.userInfo();
    const auto found = userInfo.find(kQLNBonjourBrowserDidRemoveServiceNamesKey);
    if (found == userInfo.end())
        return;
    if (const auto* names = std::get_if<std::vector<std::string>>(&found->second)) {
        for (const auto& name : *names) {
            mTried.erase(name);
            mLeftAlone.erase(name);
        }
    }
}

void AutoConnector::conditionChanged()
{
    settle();
    if (mServices.discovery.condition() == DiscoveryCondition::working)
        startAfresh();
}

void AutoConnector::preferencesChanged()
{
    const auto before = std::exchange(mChosen, mServices.preferences.autoConnectDevices());
    const auto ticked = newlyChosenNames(before, mChosen);
    const Names names(ticked.begin(), ticked.end());
    for (const auto& service : mBrowser->activeServiceList()) {
        if (names.contains(service->name()))
            welcome(*service);
    }
    const bool wanted = isWanted();
    if (wanted && !mWasWanted) {
        mLeftAlone.clear();
        startAfresh();
    }
    mWasWanted = wanted;
    considerSoon();
}

bool AutoConnector::isWanted()
{
    return mServices.preferences.autoConnectOption() &&
           mServices.preferences.currentState() == stateOn;
}

QLNBonjourBrowser::ServiceList AutoConnector::servicesOfHost(const std::string& hostName) const
{
    ServiceList services;
    const auto& all = mBrowser->activeServiceList();
    std::copy_if(all.begin(), all.end(), std::back_inserter(services),
                 [&](const auto& service) { return service->hostName() == hostName; });
    return services;
}

void AutoConnector::userChose(const std::string& hostName)
{
    for (const auto& service : servicesOfHost(hostName))
        welcome(*service);
}

void AutoConnector::welcome(const NetService& service)
{
    mTried.erase(service.name());
    mLeftAlone.erase(service.name());
}

void AutoConnector::userChoseNot(const std::string& hostName)
{
    for (const auto& service : servicesOfHost(hostName))
        mLeftAlone.insert(service->name());
}

void AutoConnector::userChoseNone()
{
    for (const auto& service : mBrowser->activeServiceList())
        mLeftAlone.insert(service->name());
}

/// Those in sight that the user never confirmed. Names are enough: whether it is that very device,
/// its key will prove.
AutoConnector::Names AutoConnector::strangers(const ServiceList& services) const
{
    Names names;
    const auto peers = mServices.paired.all();
    for (const auto& service : services) {
        const auto isKnown = [&](const PairedPeer& peer) {
            return mayBeOneDevice(peer.name, service->name());
        };
        if (std::none_of(peers.begin(), peers.end(), isKnown))
            names.insert(service->name());
    }
    return names;
}

// --- attempts --------------------------------------------------------------------------------

void AutoConnector::attemptFailed(const std::string& hostName)
{
    if (hostName == kOtherDeviceName)
        mTried.insert(mServer.chosenDevice());
    for (const auto& service : servicesOfHost(hostName)) {
        mTried.insert(service->name());
        // It may have moved to another address or port.
        service->resolveWithTimeout(resolveLimit);
    }
    considerSoon();
}

void AutoConnector::connectionBegan()
{
    mConnectedAt = mServices.runLoop.now();
    forgetFailures();
    considerSoon();
}

void AutoConnector::connectionEnded(const std::string& hostName)
{
    if (mServices.runLoop.now() - mConnectedAt >= steadyAfter)
        mPause.reset();
    attemptFailed(hostName);
}

/// News come in bursts: one look at everything serves them all.
void AutoConnector::considerSoon()
{
    if (std::exchange(mWillConsider, true))
        return;
    mServices.runLoop.performAfterDelay(Duration::zero(), weak_from_this(), [this] {
        mWillConsider = false;
        consider();
    });
}

void AutoConnector::consider()
{
    const bool isFirst = mServer.isIdle();
    const bool takesFurther =
        mServer.takesFurther() && mServices.preferences.autoConnectAllDevices();
    if (!mHasSettled || !(isFirst || takesFurther) || (isFirst && bringBack()) || !isWanted())
        return;
    const ServiceList services = mBrowser->activeServiceList();
    const Names never = heldOff(services);
    Names notNow = never;
    notNow.insert(mTried.begin(), mTried.end());
    const auto stranger = choice(services, mLeftAlone);
    if (const auto target = choice(services, notNow))
        tryOnce(target->serviceName, *target);
    else if (choice(services, never))
        pause();
    else if (isFirst)
        mServer.strangerIsInSight(stranger ? stranger->serviceName : "");
}

/// Those that are used, were never confirmed, or that the user wants to be left alone.
AutoConnector::Names AutoConnector::heldOff(const ServiceList& services) const
{
    Names names = strangers(services);
    names.insert(mLeftAlone.begin(), mLeftAlone.end());
    for (const auto& service : services) {
        if (mServer.uses(service->hostName().value_or("")))
            names.insert(service->name());
    }
    return names;
}

std::optional<DeviceTarget> AutoConnector::choice(const ServiceList& services,
                                                  const Names& heldOff) const
{
    const auto index = autoConnectChoice(mChosen, announcedDevices(services), heldOff);
    if (!index)
        return std::nullopt;
    const NetService& service = *services[*index];
    return DeviceTarget{service.hostName().value_or(""), service.name(), service.endpoints()};
}

/// Whether the device that the user chose is the only one to think of now.
bool AutoConnector::bringBack()
{
    const std::string chosen = mServer.chosenDevice();
    // Nobody knows whether an address is in sight: the list has its turn when it does not answer.
    if (isValidIPAddress(chosen))
        return tryOnce(chosen, {kOtherDeviceName, {}, {{chosen, kMainDataTrafficPort, 0}}});
    const ServiceList services = servicesOfHost(chosen);
    // It may be announced as in use still by the connection that broke: the device knows better.
    if (const auto target = targetOfHost(services, chosen))
        tryOnce(target->serviceName, *target);
    return !services.empty();
}

/// Connects to a device that was not tried since the last pause; for another begins a pause.
bool AutoConnector::tryOnce(const std::string& name, const DeviceTarget& target)
{
    const bool isNew = mTried.insert(name).second;
    if (isNew)
        mServer.connectByItself(target);
    else
        pause();
    return isNew;
}

void AutoConnector::pause()
{
    if (!mRetry.expired())
        return;
    mRetry = mServices.runLoop.scheduledTimer(mPause.next(), false, weak_from_this(),
                                              [this] { tryAgain(); });
}

void AutoConnector::tryAgain()
{
    mRetry.reset();
    mTried.clear();
    consider();
}

/// What failed before tells nothing about now.
void AutoConnector::startAfresh()
{
    mPause.reset();
    forgetFailures();
    considerSoon();
}

void AutoConnector::forgetFailures()
{
    if (const auto retry = mRetry.lock())
        retry->invalidate();
    mRetry.reset();
    mTried.clear();
}

} // namespace farview
