#include "Applications/ScreenCapture/ScreenServer.h"

#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/NSString_Additions.h"

#include <algorithm>
#include <utility>

namespace farview
{

namespace
{

constexpr std::size_t longestHostName = 255;

bool isHostName(const std::string* text)
{
    const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
    return text && !text->empty() && text->size() <= longestHostName && *text != kOtherDeviceName &&
           std::none_of(text->begin(), text->end(), isControl);
}

} // namespace

ScreenServer::ScreenServer(Services services, Ending ending)
    : mServices(services), mEnding(std::move(ending)),
      mPaired(services.storage, PairedPeers::devices), mPacketLog(services.log)
{
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
    mState = State::idle;
    mServices.link.setDelegate(weak_from_this());
    observe(kQueryRequestForConnectedHost, &ScreenServer::answerQuery);
    observe(kFVEPrefsDidChangeNotification, &ScreenServer::preferencesChanged);
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
                                mServices.preferences, mPaired},
        *this);
    mBrowser->init();
    mAutoConnector->start(mBrowser);
}

void ScreenServer::observeBrowser(const char* name)
{
    mServices.localCenter.addObserver(
        weak_from_this(), [this](const Notification&) { search(); }, name, mBrowser.get());
}

// --- what the panel asks for -----------------------------------------------------------------

void ScreenServer::connectToHost(const Notification& notification)
{
    const std::string* hostName = notification.text(kConnectToHostNameKey);
    if (!isHostName(hostName)) {
        mServices.log.write(LogLevel::warning, "A request to connect names no host");
        return;
    }
    const bool isUnderWay = tookOverAttempt(*hostName);
    takeRequest();
    mAutoConnector->userChose(*hostName);
    if (isConnectedTo(*hostName, mDeviceAddress)) {
        mIsAutomatic = false;
        keepChoice();
        announceState();
        return;
    }
    if (isUnderWay)
        return;
    leaveDevice();
    takeOrder({*hostName, {}, {}}, false);
    mState = State::searching;
    const auto ended = [this, request = mRequest] { searchEnded(request); };
    mServices.runLoop.performAfterDelay(searchLimit, weak_from_this(), ended);
    search();
}

void ScreenServer::connectToTicket(const Notification& notification)
{
    const std::string* address = notification.text(kConnectUsingTicketKey);
    if (!address || !isValidIPAddress(*address)) {
        mServices.log.write(LogLevel::warning, "A request to connect holds no address");
        return;
    }
    takeRequest();
    if (isConnectedTo(kOtherDeviceName, *address)) {
        keepChoice();
        announceState();
        return;
    }
    leaveDevice();
    takeOrder({kOtherDeviceName, {}, {}}, false);
    mDeviceAddress = *address;
    connect({{*address, static_cast<std::uint16_t>(kMainDataTrafficPort), 0}});
}

void ScreenServer::disconnectFromHost(const Notification& /*notification*/)
{
    takeRequest();
    const bool wasConnected = mState == State::connected;
    leaveDevice();
    mAutoConnector->userChoseNone();
    if (!wasConnected)
        announceState();
}

void ScreenServer::answerQuery(const Notification& /*notification*/)
{
    if (mState == State::connected)
        postDevice(kQueryResultForConnectedHost);
    else
        announceState();
    if (mPairing != PairingReport{})
        postPairing();
    // The setting of HiDPI resolutions is the system's: others may change it without a word.
    sendOptions();
}

void ScreenServer::preferencesChanged(const Notification& /*notification*/)
{
    mAutoConnector->preferencesChanged();
    sendOptions();
    mPacketLog.setOn(mServices.preferences.logsScreenPackets());
    if (mScreen)
        mScreen->preferencesChanged();
}

// --- the road to a device --------------------------------------------------------------------

/// The user wants something else than before.
void ScreenServer::takeRequest()
{
    mServices.chosenDevice.set({});
    mRequestedAt = mServices.runLoop.now();
    ++mRequest;
    if (!isPairing())
        setPairing(PairingReport::State::none);
}

void ScreenServer::keepChoice()
{
    mServices.chosenDevice.set(mDeviceName == kOtherDeviceName ? mDeviceAddress : mDeviceName);
}

std::string ScreenServer::chosenDevice() const
{
    const std::string chosen = mServices.chosenDevice.text();
    return isHostName(&chosen) ? chosen : std::string{};
}

bool ScreenServer::isConnectedTo(const std::string& deviceName, const std::string& address) const
{
    return mState == State::connected && mDeviceName == deviceName && mDeviceAddress == address;
}

/// Whether the user asks for the device that the server is connecting to by itself already, or that
/// the user is asked about.
bool ScreenServer::tookOverAttempt(const std::string& hostName)
{
    const bool isLeft = mPairing != PairingReport{} && !isPairing();
    if (mState != State::connecting || isLeft || mDeviceName != hostName)
        return false;
    if (!mIsAutomatic && !isPairing())
        return false;
    mIsAutomatic = false;
    return true;
}

void ScreenServer::takeOrder(const Target& target, bool isAutomatic)
{
    mDeviceName = target.deviceName;
    mServiceName = target.serviceName;
    mIsAutomatic = isAutomatic;
}

void ScreenServer::connectByItself(const Target& target)
{
    takeOrder(target, true);
    mDeviceAddress = target.endpoints.front().address;
    mServices.log.write(LogLevel::info, "Connecting to " + mDeviceName + " by itself");
    connect(target.endpoints);
}

/// Ends the connection or whatever is under way; says so when there was a connection.
void ScreenServer::leaveDevice()
{
    const State before = std::exchange(mState, State::idle);
    endScreen();
    if (before == State::connecting || before == State::connected)
        mServices.link.disconnect(
            isPairing() ? LinkGoodbyeCode::notConfirmed : LinkGoodbyeCode::byUser, {});
    pairingEnded();
    if (before == State::connected)
        announceState();
}

void ScreenServer::search()
{
    if (mState != State::searching)
        return;
    for (const auto& service : mBrowser->activeServiceList()) {
        if (service->hostName() == mDeviceName && !service->endpoints().empty()) {
            mAutoConnector->userChose(mDeviceName);
            mServiceName = service->name();
            connect(service->endpoints());
            return;
        }
    }
}

void ScreenServer::searchEnded(unsigned request)
{
    if (mState == State::searching && request == mRequest)
        giveUp("It was not found on the network");
}

void ScreenServer::connect(const std::vector<Endpoint>& endpoints)
{
    mState = State::connecting;
    mSentOptions = options();
    mServices.link.connectTo(endpoints, mSentOptions);
}

void ScreenServer::giveUp(const std::string& why)
{
    mServices.log.write(mIsAutomatic ? LogLevel::info : LogLevel::error,
                        "Cannot connect to " + mDeviceName + ": " + why);
    mState = State::idle;
    // A device that does not answer may be gone for good and still be listed.
    mServices.discovery.checkAgain();
    // Who did not ask for it is not told that it failed.
    if (!mIsAutomatic)
        post(kRequestingErrorMsgFromPrefPane);
    mAutoConnector->attemptFailed(mDeviceName);
}

void ScreenServer::deviceDidConnect(const ConnectedDevice& device)
{
    if (mState != State::connecting)
        return;
    mState = State::connected;
    if (mDeviceName != kOtherDeviceName)
        mDeviceAddress = device.address;
    mServices.log.write(LogLevel::info, "Connected to " + mDeviceName + " at " + device.address +
                                            ", " + device.cipher);
    keepDevice(device);
    if (!mIsAutomatic)
        keepChoice();
    mAutoConnector->connectionBegan();
    announceState();
    // They may have changed while the connection was made.
    sendOptions();
}

void ScreenServer::deviceDidDisconnect(const LinkEnd& end)
{
    if (mState != State::connected)
        return;
    const bool vanished = end.reason != LinkEndReason::goodbye;
    mServices.log.write(vanished ? LogLevel::error : LogLevel::info,
                        "The connection to " + mDeviceName + " ended: " + end.text);
    mState = State::idle;
    endScreen();
    if (vanished)
        mServices.discovery.checkAgain();
    announceState();
    mAutoConnector->connectionEnded(mDeviceName);
}

LinkOptions ScreenServer::options()
{
    FVEPreferences& preferences = mServices.preferences;
    return {preferences.enableTouchDisplay(), preferences.areRetinaResolutionsEnabled(),
            preferences.enableHiDPIResolutions(), preferences.autoMoveWindowsBackOption()};
}

void ScreenServer::sendOptions()
{
    if (mState != State::connected)
        return;
    const LinkOptions now = options();
    if (now == mSentOptions)
        return;
    mSentOptions = now;
    mServices.link.setOptions(now);
}

} // namespace farview
