#include "Applications/ScreenCapture/DeviceConnection.h"

#include "Common/FVEDistributedNotifications.h"

#include <algorithm>
#include <utility>

namespace farview
{

DeviceConnection::DeviceConnection(Services services, std::shared_ptr<DeviceLink> link)
    : mServices(services), mLink(std::move(link))
{
}

void DeviceConnection::setEvents(Events events)
{
    mEvents = std::move(events);
    mLink->setDelegate(weak_from_this());
}

void DeviceConnection::aim(const DeviceTarget& target, bool isAutomatic)
{
    mTarget = target;
    mDevice = {};
    mIsAutomatic = isAutomatic;
}

void DeviceConnection::begin()
{
    mState = State::connecting;
    mSentOptions = options();
    mLink->connectTo(mTarget.endpoints, mSentOptions);
}

std::string DeviceConnection::address() const
{
    const bool isReached = isConnected() && deviceName() != kOtherDeviceName;
    if (isReached || mTarget.endpoints.empty())
        return mDevice.address;
    return mTarget.endpoints.front().address;
}

std::string DeviceConnection::request() const
{
    return deviceName() == kOtherDeviceName ? address() : deviceName();
}

ScreenReport DeviceConnection::screen() const
{
    if (mScreen)
        return mScreen->report();
    // The device is about to tell its screen.
    const bool isComing = isConnected() && mLink->hasFeature(kLinkScreenFeature);
    return {.state = isComing ? ScreenReport::State::coming : ScreenReport::State::none};
}

// --- the end ---------------------------------------------------------------------------------

/// The monitor goes before the connection does. The link says goodbye even when nobody else needs
/// it any more.
void DeviceConnection::leave()
{
    const State before = std::exchange(mState, State::idle);
    endScreen();
    if (before != State::idle)
        mLink->disconnect(mIsPairing ? LinkGoodbyeCode::notConfirmed : LinkGoodbyeCode::byUser,
                          [link = mLink] {});
    pairingEnded();
}

void DeviceConnection::quit(std::function<void()> then)
{
    mState = State::idle;
    mIsPairing = false;
    endScreen();
    mLink->disconnect(LinkGoodbyeCode::quitting, std::move(then));
}

void DeviceConnection::deviceDidDisconnect(const LinkEnd& end)
{
    if (!isConnected())
        return;
    const bool vanished = end.reason != LinkEndReason::goodbye;
    mServices.log.write(vanished ? LogLevel::error : LogLevel::info,
                        "The connection to " + deviceName() + " ended: " + end.text);
    mState = State::idle;
    endScreen();
    mEvents.ended(end);
}

// --- options and screen ----------------------------------------------------------------------

LinkOptions DeviceConnection::options()
{
    FVEPreferences& preferences = mServices.preferences;
    const bool takesInput = preferences.enableTouchDisplay();
    const auto peers = mServices.desk.peers().all();
    const bool mayType = std::any_of(peers.begin(), peers.end(), [this](const PairedPeer& peer) {
        return peer.mayType && peer.key == mDevice.key;
    });
    return {takesInput, preferences.areRetinaResolutionsEnabled(),
            preferences.enableHiDPIResolutions(), preferences.autoMoveWindowsBackOption(),
            takesInput && mayType};
}

void DeviceConnection::preferencesChanged()
{
    sendOptions();
    if (mScreen)
        mScreen->preferencesChanged(mSentOptions);
}

void DeviceConnection::sendOptions()
{
    if (!isConnected())
        return;
    const LinkOptions now = options();
    if (std::exchange(mSentOptions, now) != now)
        mLink->setOptions(now);
}

void DeviceConnection::deviceDidSend(const LinkFrame& frame)
{
    if (!isConnected())
        return;
    const auto* shown = std::get_if<LinkShown>(&frame);
    if (const auto* screen = std::get_if<LinkDeviceScreen>(&frame)) {
        take(*screen);
    } else if (isOfInput(frame)) {
        if (mScreen)
            mScreen->deviceDid(frame);
    } else if (shown && !(mScreen && mScreen->deviceShowed(*shown))) {
        mLink->disconnect(LinkGoodbyeCode::brokenRule, {});
        deviceDidDisconnect({LinkEndReason::brokenRule, "The device showed what it was not sent"});
    }
}

void DeviceConnection::take(const LinkDeviceScreen& screen)
{
    if (!mScreen)
        mScreen = std::make_shared<ScreenSession>(
            ScreenSession::Services{mServices.screens, mServices.runLoop, mServices.preferences,
                                    *mLink, mServices.packetLog, mServices.log},
            request(), mSentOptions, [this] { mEvents.screenChanged(); });
    mScreen->deviceScreenIs(screen);
}

void DeviceConnection::deviceHasRoom()
{
    if (mScreen)
        mScreen->linkHasRoom();
}

void DeviceConnection::endScreen()
{
    if (std::exchange(mScreen, nullptr))
        mEvents.screenChanged();
}

} // namespace farview
