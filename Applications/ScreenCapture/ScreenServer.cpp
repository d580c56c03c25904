#include "Applications/ScreenCapture/ScreenServer.h"

#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/NSString_Additions.h"

#include <algorithm>
#include <utility>

namespace farview
{

ScreenServer::ScreenServer(Services services, Ending ending)
    : mServices(std::move(services)), mEnding(std::move(ending)),
      mDesk(mServices.storage, [this] { postPairing(); }), mPacketLog(mServices.log),
      mFirst(makeConnection()), mFurther(furtherServices())
{
}

std::shared_ptr<DeviceConnection> ScreenServer::makeConnection()
{
    return std::make_shared<DeviceConnection>(
        DeviceConnection::Services{mServices.runLoop, mServices.preferences, mServices.screens,
                                   mPacketLog, mServices.log, mServices.clock, mDesk},
        mServices.makeLink());
}

void ScreenServer::setFirst(std::shared_ptr<DeviceConnection> connection)
{
    mFirst = std::move(connection);
    mFirst->setEvents({[this] { deviceCame(); }, [this](const auto& why) { giveUp(why); },
                       [this](const auto& end) { deviceWent(end); }, [this] { postScreen(); }});
}

FurtherConnections::Services ScreenServer::furtherServices()
{
    return {mServices.runLoop, [this] { return makeConnection(); },
            [this] { return mBrowser->activeServiceList(); },
            [this] {
                postFurther();
                mAutoConnector->furtherBegan();
            },
            [this](const std::string& hostName) { mAutoConnector->attemptFailed(hostName); }};
}

void ScreenServer::listen()
{
    observeRequest(kConnectServerToHost, &ScreenServer::connectToHost);
    observeRequest(kConnectServerToTicket, &ScreenServer::connectToTicket);
    observeRequest(kDisconnectCurrentServerFromHost, &ScreenServer::disconnectFromHost);
    mServices.center.addObserver(
        weak_from_this(), [this](const Notification&) { quit(); }, kTerminateScreenServer, "");
}

void ScreenServer::start()
{
    if (mState != State::waiting)
        return;
    mState = State::running;
    setFirst(mFirst);
    observe(kQueryRequestForConnectedHost, &ScreenServer::answerQuery);
    observe(kFVEPrefsDidChangeNotification, &ScreenServer::preferencesChanged);
    observe(kAlsoConnectToHost, &ScreenServer::alsoConnectToHost);
    observe(kDisconnectFurtherDevice, &ScreenServer::disconnectFurther);
    observe(kConfirmDevice, &ScreenServer::confirmDevice);
    observe(kRefuseDevice, &ScreenServer::refuseDevice);
    observe(kPairedDevicesDidChange, &ScreenServer::pairedDevicesChanged);
    observeReconnection();
    mPacketLog.setOn(mServices.preferences.logsScreenPackets());
    startBrowsing();
    if (mHeldRequest) {
        announceState();
        std::exchange(mHeldRequest, nullptr)();
    } else {
        // Whoever asked while this process was still coming up is to ask again.
        post(kServerDisconnectedFromDevice, {{kAwaitsRequestKey, "YES"}});
    }
}

void ScreenServer::observe(const char* name, Operation operation)
{
    const auto handler = [this, operation](const Notification& notification) {
        if (mState != State::quitting)
            (this->*operation)(notification);
    };
    mServices.center.addObserver(weak_from_this(), handler, name, "");
}

void ScreenServer::observeRequest(const char* name, Operation operation)
{
    const auto handler = [this, operation](const Notification& notification) {
        if (mState == State::waiting)
            mHeldRequest = [this, operation, userInfo = notification.userInfo()] {
                (this->*operation)(Notification({}, nullptr, userInfo));
            };
        else if (mState != State::quitting)
            (this->*operation)(notification);
    };
    mServices.center.addObserver(weak_from_this(), handler, name, "");
}

void ScreenServer::observeReconnection()
{
    mReconnection = mServices.center.observeReconnection([this] {
        announceState();
        preferencesChanged(Notification(kFVEPrefsDidChangeNotification, nullptr, {}));
    });
}

void ScreenServer::startBrowsing()
{
    QLNBonjourBrowser::setBonjourServiceName(kVirtualScreenServiceName);
    mBrowser = std::make_shared<QLNBonjourBrowser>(mServices.discovery, mServices.runLoop,
                                                   mServices.localCenter);
    observeBrowser(kQLNBonjourBrowserDidAddService);
    observeBrowser(kQLNBonjourBrowserDidUpdateService);
    mAutoConnector = std::make_shared<AutoConnector>(
        AutoConnector::Services{mServices.discovery, mServices.runLoop, mServices.localCenter,
                                mServices.preferences, mDesk.peers()},
        *this);
    mBrowser->init();
    mAutoConnector->start(mBrowser);
}

void ScreenServer::observeBrowser(const char* name)
{
    mServices.localCenter.addObserver(
        weak_from_this(),
        [this](const Notification&) {
            search();
            mFurther.devicesChanged();
        },
        name, mBrowser.get());
}

// --- the road to a device --------------------------------------------------------------------

/// The user wants something else than before.
void ScreenServer::takeRequest()
{
    mServices.chosenDevice.set({});
    mRequestedAt = mServices.runLoop.now();
    ++mRequest;
    if (!mDesk.isAsking())
        mDesk.tell({});
}

void ScreenServer::keepChoice() { mServices.chosenDevice.set(mFirst->request()); }

bool ScreenServer::isIdle() const
{
    return mState == State::running && !mIsSearching && mFirst->isIdle();
}

bool ScreenServer::takesFurther() const
{
    return mState == State::running && mFirst->isConnected() && !mFurther.isFull();
}

bool ScreenServer::uses(const std::string& hostName) const
{
    return mFurther.uses(hostName) || (!isIdle() && mFirst->deviceName() == hostName);
}

/// Whether the user asks for the device that the server is connecting to by itself already, or that
/// the user is asked about.
bool ScreenServer::tookOverAttempt(const std::string& hostName)
{
    const bool isPairing = mFirst->isPairing();
    const bool isLeft = mDesk.report() != PairingReport{} && !isPairing;
    if (!mFirst->isConnecting() || isLeft || mFirst->deviceName() != hostName)
        return false;
    if (!mFirst->isAutomatic() && !isPairing)
        return false;
    mFirst->takeOver();
    return true;
}

/// One that is used already beside the first becomes the first, with its picture.
bool ScreenServer::tookOverFurther(const std::string& hostName)
{
    auto connection = mFurther.take(hostName);
    if (!connection)
        return false;
    const bool isConnected = connection->isConnected();
    if (isConnected) {
        leaveDevice();
        setFirst(std::move(connection));
    } else {
        connection->leave();
    }
    postFurther();
    return isConnected;
}

void ScreenServer::connectByItself(const DeviceTarget& target)
{
    mServices.log.write(LogLevel::info, "Connecting to " + target.deviceName + " by itself");
    if (mFirst->isConnected()) {
        mFurther.add(target.deviceName, true);
    } else if (tookOverFurther(target.deviceName)) {
        deviceCame();
    } else {
        mFirst->aim(target, true);
        mFirst->begin();
    }
}

/// Ends the connection or whatever is under way; says so when there was a connection.
void ScreenServer::leaveDevice()
{
    const bool wasConnected = mFirst->isConnected();
    mIsSearching = false;
    mFirst->leave();
    if (wasConnected)
        announceState();
}

void ScreenServer::search()
{
    const auto target = mIsSearching
                            ? targetOfHost(mBrowser->activeServiceList(), mFirst->deviceName())
                            : std::nullopt;
    if (!target)
        return;
    mIsSearching = false;
    mAutoConnector->userChose(target->deviceName);
    mFirst->aim(*target, false);
    mFirst->begin();
}

void ScreenServer::searchEnded(unsigned request)
{
    if (mIsSearching && request == mRequest)
        giveUp("It was not found on the network");
}

void ScreenServer::giveUp(const std::string& why)
{
    const bool isAutomatic = mFirst->isAutomatic();
    mServices.log.write(isAutomatic ? LogLevel::info : LogLevel::error,
                        "Cannot connect to " + mFirst->deviceName() + ": " + why);
    mIsSearching = false;
    // A device that does not answer may be gone for good and still be listed.
    mServices.discovery.checkAgain();
    // Who did not ask for it is not told that it failed.
    if (!isAutomatic)
        post(kRequestingErrorMsgFromPrefPane);
    mAutoConnector->attemptFailed(mFirst->deviceName());
}

void ScreenServer::deviceCame()
{
    if (!mFirst->isAutomatic())
        keepChoice();
    mAutoConnector->connectionBegan();
    announceState();
}

void ScreenServer::deviceWent(const LinkEnd& end)
{
    if (end.reason != LinkEndReason::goodbye)
        mServices.discovery.checkAgain();
    announceState();
    mAutoConnector->connectionEnded(mFirst->deviceName());
}

void ScreenServer::strangerIsInSight(const std::string& serviceName)
{
    const auto unconfirmed = PairingReport::State::unconfirmed;
    const bool isTold = mDesk.report().state == unconfirmed;
    if (isTold || mDesk.report() == PairingReport{})
        mDesk.tell(serviceName.empty() ? PairingReport{}
                                       : PairingReport{unconfirmed, {}, serviceName});
}

} // namespace farview
