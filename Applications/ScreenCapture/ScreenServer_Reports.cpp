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
    if (mFirst->isConnected())
        postDevice(kServerConnectedToDevice);
    else
        announceNone();
}

/// And whether a device would get a picture: the user is to know that before trying one.
void ScreenServer::announceNone()
{
    post(kServerDisconnectedFromDevice);
    mServices.screens.availability(weak_from_this(), [this](const ScreenAvailability& found) {
        if (mFirst->isConnected() || mState != State::running)
            return;
        const auto report =
            found.way ? ScreenReport{.state = ScreenReport::State::possible, .way = *found.way}
                      : ScreenReport{.state = ScreenReport::State::impossible,
                                     .obstacle = found.obstacle};
        post(kServerScreenDidChange, {{kScreenReportKey, textOfScreenReport(report)}});
    });
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
            if (mFirst->isConnected() && mRequest == request)
                postDevice(name);
        };
        mServices.runLoop.performAfterDelay(early, weak_from_this(), again);
        return;
    }
    post(name, {{kDeviceNameKey, mFirst->deviceName()},
                {kDeviceAddressKey, mFirst->address()},
                {kCipherKey, mFirst->device().cipher},
                {kDeviceKeyKey, mFirst->device().key}});
    postScreen();
}

void ScreenServer::postScreen()
{
    post(kServerScreenDidChange, {{kScreenReportKey, textOfScreenReport(mFirst->screen())}});
}

void ScreenServer::postPairing()
{
    post(kServerPairingDidChange, {{kPairingReportKey, textOfPairingReport(mDesk.report())}});
}

void ScreenServer::postFurther()
{
    const std::string text = textOfFurtherDevices(mFurther.list());
    if (std::exchange(mPostedFurther, text) != text)
        post(kServerFurtherDevicesDidChange, {{kFurtherDevicesKey, text}});
}

// --- the end ---------------------------------------------------------------------------------

void ScreenServer::quit()
{
    if (mState == State::quitting)
        return;
    mState = State::quitting;
    mServices.chosenDevice.set({});
    mDesk.tell({});
    mIsSearching = false;
    mEnding.quitting();
    if (mBrowser)
        mBrowser->stop();
    const auto self = weak_from_this();
    const auto said = [self] {
        if (const auto server = self.lock()) {
            --server->mGoodbyesLeft;
            server->finishWhenSaid();
        }
    };
    mGoodbyesLeft = 1 + mFurther.count();
    mFurther.quit(said);
    mFirst->quit(said);
    const auto postIsSent = [this] {
        mLastPostSent = true;
        finishWhenSaid();
    };
    mServices.center.addObserver(
        self, [postIsSent](const Notification&) { postIsSent(); }, kServerDisconnectedFromDevice,
        "");
    mServices.runLoop.performAfterDelay(lastPostLimit, self, postIsSent);
    mServices.runLoop.performAfterDelay(quitLimit, self, [this] {
        mGoodbyesLeft = 0;
        finishWhenSaid();
    });
    post(kServerDisconnectedFromDevice);
}

void ScreenServer::finishWhenSaid()
{
    if (mGoodbyesLeft > 0 || !mLastPostSent || std::exchange(mFinished, true))
        return;
    mEnding.finished();
}

} // namespace farview
