// The monitor of the device that is connected.

#include "Applications/ScreenCapture/ScreenServer.h"

#include "Common/FVEDistributedNotifications.h"

#include <memory>
#include <utility>

namespace farview
{

void ScreenServer::deviceDidSend(const LinkFrame& frame)
{
    if (mState != State::connected)
        return;
    const auto* shown = std::get_if<LinkShown>(&frame);
    if (const auto* screen = std::get_if<LinkDeviceScreen>(&frame)) {
        mDeviceScreen = *screen;
        if (mScreen)
            mScreen->deviceScreenIs(*screen);
        else
            beginScreen();
    } else if (shown && !(mScreen && mScreen->deviceShowed(*shown))) {
        mServices.link.disconnect(LinkGoodbyeCode::brokenRule, {});
        deviceDidDisconnect({LinkEndReason::brokenRule, "The device showed what it was not sent"});
    }
}

void ScreenServer::deviceHasRoom()
{
    if (mScreen)
        mScreen->linkHasRoom();
}

/// Once it has told its screen.
void ScreenServer::beginScreen()
{
    if (mState != State::connected || mScreen || !mDeviceScreen)
        return;
    const std::string& device = mDeviceName == kOtherDeviceName ? mDeviceAddress : mDeviceName;
    mScreen = std::make_shared<ScreenSession>(
        ScreenSession::Services{mServices.screens, mServices.runLoop, mServices.preferences,
                                mServices.link, mPacketLog, mServices.log},
        device, [this] { postScreen(); });
    mScreen->deviceScreenIs(*mDeviceScreen);
}

/// The monitor goes before the connection does.
void ScreenServer::endScreen()
{
    mDeviceScreen.reset();
    if (std::exchange(mScreen, nullptr))
        postScreen();
}

} // namespace farview
