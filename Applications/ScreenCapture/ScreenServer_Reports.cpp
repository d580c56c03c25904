// What the server says, and how it ends.

#include "Applications/ScreenCapture/ScreenServer.h"

#include "Common/FVEDistributedNotifications.h"

#include <utility>

namespace farview
{

namespace
{

constexpr unsigned toAllAtOnce = DistributedNotificationCenter::deliverImmediately |
                                 DistributedNotificationCenter::postToAllSessions;
/// How long the bus may take to bring our last post back, which proves that it is on its way.
constexpr Duration lastPostLimit{0.3};
/// When the server ends, whatever is still open.
constexpr Duration quitLimit{0.95};

} // namespace

void ScreenServer::announceState()
{
    if (mState == State::connected)
        postDevice(kServerConnectedToDevice);
    else
        post(kServerDisconnectedFromDevice);
}

void ScreenServer::post(const char* name, DistributedNotificationCenter::TextUserInfo userInfo)
{
    mServices.center.postNotificationName(name, "", std::move(userInfo), toAllAtOnce);
}

void ScreenServer::postDevice(const char* name)
{
    const Duration early = mRequestedAt + earliestReport - mServices.runLoop.now();
    if (early > Duration::zero()) {
        const auto again = [this, name, request = mRequest] {
            if (mState == State::connected && mRequest == request)
                postDevice(name);
        };
        mServices.runLoop.performAfterDelay(early, weak_from_this(), again);
        return;
    }
    post(name, {{kDeviceNameKey, mDeviceName},
                {kDeviceAddressKey, mDeviceAddress},
                {kCipherKey, mDevice.cipher},
                {kDeviceKeyKey, mDevice.key}});
    postScreen();
}

void ScreenServer::postScreen()
{
    ScreenReport report = mScreen ? mScreen->report() : ScreenReport{};
    // The device is about to tell its screen.
    if (mState == State::connected && !mScreen && mServices.link.hasFeature(kLinkScreenFeature))
        report.state = ScreenReport::State::coming;
    post(kServerScreenDidChange, {{kScreenReportKey, textOfScreenReport(report)}});
}

// --- the end ---------------------------------------------------------------------------------

void ScreenServer::quit()
{
    if (mState == State::quitting)
        return;
    mState = State::quitting;
    mServices.chosenDevice.set({});
    setPairing(PairingReport::State::none);
    endScreen();
    mEnding.quitting();
    if (mBrowser)
        mBrowser->stop();
    const auto self = weak_from_this();
    mServices.link.disconnect(LinkGoodbyeCode::quitting, [self] {
        if (const auto server = self.lock()) {
            server->mGoodbyeSaid = true;
            server->finishWhenSaid();
        }
    });
    const auto postIsSent = [this] {
        mLastPostSent = true;
        finishWhenSaid();
    };
    mServices.center.addObserver(
        self, [postIsSent](const Notification&) { postIsSent(); }, kServerDisconnectedFromDevice,
        "");
    mServices.runLoop.performAfterDelay(lastPostLimit, self, postIsSent);
    mServices.runLoop.performAfterDelay(quitLimit, self, [this] {
        mGoodbyeSaid = true;
        finishWhenSaid();
    });
    post(kServerDisconnectedFromDevice);
}

void ScreenServer::finishWhenSaid()
{
    if (!mGoodbyeSaid || !mLastPostSent || std::exchange(mFinished, true))
        return;
    mEnding.finished();
}

} // namespace farview
