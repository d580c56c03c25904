#include "Applications/FarviewStatusItem/StatusMenu.h"

#include "Applications/FarviewStatusItem/ServerLaunch.h"
#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/Registry/QLNRegistryExplorer.h"
#include "Common/Rules/Connection.h"
#include "Platform/Log.h"
#include "Platform/Workspace.h"

#include <array>
#include <utility>

namespace farview
{
namespace
{

std::shared_ptr<NetService> serviceOf(const MenuItem& item)
{
    const auto* object = std::get_if<std::shared_ptr<Object>>(&item.representedObject);
    return object ? std::dynamic_pointer_cast<NetService>(*object) : nullptr;
}

} // namespace

StatusMenu::StatusMenu(Services services, std::function<void()> quitting)
    : mServices(std::move(services)), mQuitting(std::move(quitting)),
      mConnection(mServices.platform)
{
}

void StatusMenu::start()
{
    auto& explorer = QLNRegistryExplorer::sharedExplorer();
    explorer.setCurrentPlane("IOService");
    mDriverInstalled = explorer.findNamedIORegistryService(kFVEKextName).has_value();
    mWasInMenuBar = mServices.preferences.showInMenuBar();
    mState = mServices.preferences.currentState();

    observe(kFVEPrefsDidChangeNotification, &StatusMenu::preferencesChanged);
    observe(kServerConnectedToDevice, &StatusMenu::connectedToDevice);
    observe(kQueryResultForConnectedHost, &StatusMenu::connectedToDevice);
    observe(kServerDisconnectedFromDevice, &StatusMenu::disconnectedFromDevice);
    observe(kServerScreenDidChange, &StatusMenu::screenChanged);
    observe(kServerFurtherDevicesDidChange, &StatusMenu::furtherDevicesChanged);
    observe(kServerPairingDidChange, &StatusMenu::pairingChanged);
    observe(kRequestingErrorMsgFromPrefPane, &StatusMenu::connectFailed);
    for (const char* name :
         {kConnectServerToHost, kConnectServerToTicket, kDisconnectCurrentServerFromHost})
        observe(name, &StatusMenu::connectRequested);
    observe(kTerminateMenuExtra, &StatusMenu::terminate);
    observeReconnection();
    makeBrowser();
    refresh();
    mConnection.query();
}

void StatusMenu::observe(const char* name, void (StatusMenu::*operation)(const Notification&))
{
    const auto handler = [this, operation](const Notification& notification) {
        if (!mHasQuit)
            (this->*operation)(notification);
    };
    mServices.platform.distributedNotificationCenter->addObserver(weak_from_this(), handler, name,
                                                                  "");
}

void StatusMenu::observeBrowser(const char* name)
{
    mServices.platform.notificationCenter->addObserver(
        weak_from_this(), [this](const Notification&) { refresh(); }, name, mBrowser.get());
}

void StatusMenu::observeReconnection()
{
    const std::weak_ptr<StatusMenu> weak = weak_from_this();
    // What was posted while there was no bus is lost: settings and connection are asked for anew.
    mReconnection = mServices.platform.distributedNotificationCenter->observeReconnection([weak] {
        const auto menu = weak.lock();
        if (!menu || menu->mHasQuit)
            return;
        menu->mConnection.forgetPairing();
        menu->followPreferences();
        menu->mConnection.query();
    });
}

void StatusMenu::makeBrowser()
{
    auto& platform = mServices.platform;
    QLNBonjourBrowser::setBonjourServiceName(kVirtualScreenServiceName);
    mBrowser = std::make_shared<QLNBonjourBrowser>(*platform.discovery, *platform.runLoop,
                                                   *platform.notificationCenter);
    observeBrowser(kQLNBonjourBrowserDidAddService);
    observeBrowser(kQLNBonjourBrowserDidRemoveService);
    observeBrowser(kQLNBonjourBrowserDidUpdateService);
    mBrowser->init();
    mBrowser->setMonitorTXTRecordUpdates(true);
}

void StatusMenu::quit()
{
    if (std::exchange(mHasQuit, true))
        return;
    mReconnection.end();
    mServices.platform.distributedNotificationCenter->removeObserver(weak_from_this());
    mServices.platform.notificationCenter->removeObserver(weak_from_this());
    if (mBrowser)
        mBrowser->stop();
    mQuitting();
}

// --- what the menu offers --------------------------------------------------------------------

const Operation<StatusMenu>* StatusMenu::operation(Selector selector)
{
    static constexpr auto operations = std::to_array<Operation<StatusMenu>>({
        action<&StatusMenu::turnOn, StatusMenu>("turnOn:"),
        action<&StatusMenu::turnOff, StatusMenu>("turnOff:"),
        action<&StatusMenu::takeNoDevice, StatusMenu>("takeNoDevice:"),
        action<&StatusMenu::takeDevice, StatusMenu>("takeDevice:"),
        action<&StatusMenu::alsoUse, StatusMenu>("alsoUse:"),
        action<&StatusMenu::confirmDevice, StatusMenu>("confirmDevice:"),
        action<&StatusMenu::refuseDevice, StatusMenu>("refuseDevice:"),
        action<&StatusMenu::openPreferences, StatusMenu>("openPreferences:"),
        action<&StatusMenu::quitForGood, StatusMenu>("quit:"),
    });
    return findOperation<StatusMenu>(operations, selector);
}

bool StatusMenu::respondsTo(Selector selector) const { return !mHasQuit && operation(selector); }

bool StatusMenu::perform(Selector selector, Object* argument)
{
    const auto* found = mHasQuit ? nullptr : operation(selector);
    if (found)
        found->call(*this, argument);
    return found != nullptr;
}

void StatusMenu::turnOn(Object* /*sender*/)
{
    if (mServices.preferences.currentState() == 1)
        return;
    mServices.preferences.setCurrentState(1);
    launchServer(mServices.platform, mServices.pane.get());
    followPreferences();
}

void StatusMenu::turnOff(Object* /*sender*/)
{
    if (mServices.preferences.currentState() == 0)
        return;
    mServices.preferences.setCurrentState(0);
    mConnection.quitServer();
    followPreferences();
}

void StatusMenu::takeNoDevice(Object* /*sender*/)
{
    forgetConnection();
    mServices.preferences.setCurrentVirtualScreenDevice("");
    mConnection.chooseNone();
    refresh();
}

void StatusMenu::takeDevice(Object* sender)
{
    const auto* item = dynamic_cast<MenuItem*>(sender);
    // The entry of an address stands for the connection in force: nothing to ask for.
    const auto service = item ? serviceOf(*item) : nullptr;
    if (!service || (mSelected && service->isEqual(*mSelected)))
        return;
    if (const auto hostName = service->hostName())
        mConnection.connectToHost(*hostName);
}

void StatusMenu::alsoUse(Object* sender)
{
    const auto* item = dynamic_cast<MenuItem*>(sender);
    const auto* hostName = item ? std::get_if<std::string>(&item->representedObject) : nullptr;
    if (hostName && item->state == 0)
        mConnection.alsoConnectToHost(*hostName);
    else if (hostName)
        mConnection.leaveFurtherDevice(*hostName);
}

void StatusMenu::confirmDevice(Object* sender)
{
    if (isAboutTheDigitsInQuestion(sender))
        mConnection.confirmDevice();
}

void StatusMenu::refuseDevice(Object* sender)
{
    if (isAboutTheDigitsInQuestion(sender))
        mConnection.refuseDevice();
}

/// A menu that is open stays as it was, while other digits may have come.
bool StatusMenu::isAboutTheDigitsInQuestion(Object* sender) const
{
    const auto* item = dynamic_cast<MenuItem*>(sender);
    return item && representsSame(item->representedObject, mConnection.pairing().digits);
}

void StatusMenu::openPreferences(Object* /*sender*/)
{
    const std::string path = mServices.pane ? mServices.pane->bundlePath() : std::string();
    if (path.empty() || !mServices.platform.workspace->openURL(URL::fileURLWithPath(path)))
        mServices.platform.log->write(LogLevel::error, "Cannot open the panel \"" + path + "\"");
}

void StatusMenu::quitForGood(Object* /*sender*/)
{
    // Else the panel, which starts the item whenever it opens, would undo the user's wish.
    mServices.preferences.setShowInMenuBar(false);
    quit();
}

// --- what the others report ------------------------------------------------------------------

void StatusMenu::connectedToDevice(const Notification& notification)
{
    const auto* name = notification.text(kDeviceNameKey);
    // A service that is to be resolved yet is matched when it has been; nothing to retry here.
    if (queryResultStep(name, true) != QueryResultStep::handle ||
        !ConnectionFollower::isAcceptable(notification))
        return;
    forgetConnection();
    mConnection.forgetRequest();
    if (*name == kOtherDeviceName) {
        mConnection.followAddress(notification, mServices.preferences);
    } else {
        mReportedHostName = *name;
        storeCurrentDevice(*name);
    }
    refresh();
}

/// The panel stores it too; what is stored already is not announced again.
void StatusMenu::storeCurrentDevice(const std::string& name)
{
    if (mServices.preferences.currentVirtualScreenDevice() != name)
        mServices.preferences.setCurrentVirtualScreenDevice(name);
}

void StatusMenu::disconnectedFromDevice(const Notification& notification)
{
    const bool failed = mConnectFailed;
    forgetConnection();
    mConnection.followEnd(notification);
    // The server repeats that it is not connected whenever it is asked.
    mConnectFailed = failed;
    refresh();
}

void StatusMenu::screenChanged(const Notification& notification)
{
    mConnection.followScreen(notification);
    refresh();
}

void StatusMenu::furtherDevicesChanged(const Notification& notification)
{
    mConnection.followFurtherDevices(notification);
    refresh();
}

void StatusMenu::pairingChanged(const Notification& notification)
{
    mConnection.followPairing(notification);
    refresh();
}

void StatusMenu::connectFailed(const Notification& /*notification*/)
{
    mConnection.forgetRequest();
    mConnectFailed = true;
    refresh();
}

void StatusMenu::connectRequested(const Notification& notification)
{
    mConnection.heardRequest(notification);
    if (std::exchange(mConnectFailed, false))
        refresh();
}

void StatusMenu::preferencesChanged(const Notification& /*notification*/) { followPreferences(); }

void StatusMenu::followPreferences()
{
    auto& preferences = mServices.preferences;
    preferences.synchronize();
    const long state = preferences.currentState();
    if (std::exchange(mState, state) != state)
        mConnectFailed = false;
    if (state == 0) {
        forgetConnection();
        mConnection.forgetRequest();
        mConnection.forgetPairing();
    }
    const bool inMenuBar = preferences.showInMenuBar();
    if (std::exchange(mWasInMenuBar, inMenuBar) && !inMenuBar)
        quit();
    else
        refresh();
}

void StatusMenu::terminate(const Notification& /*notification*/) { quit(); }

void StatusMenu::forgetConnection()
{
    mSelected = nullptr;
    mReportedHostName.clear();
    mConnection.setIsByAddress(false);
    mConnection.setAddress(std::nullopt);
    mConnectFailed = false;
}

void StatusMenu::findSelectedService()
{
    const auto& services = mBrowser->activeServiceList();
    if (const auto service = ConnectionFollower::serviceOfHost(services, &mReportedHostName))
        mSelected = service;
}

bool StatusMenu::isConnected() const
{
    return !mReportedHostName.empty() || mConnection.isByAddress();
}

bool StatusMenu::isAsked() const { return !mConnection.pairing().digits.empty(); }

} // namespace farview
