// What the others ask the server for.

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

std::string ScreenServer::chosenDevice() const
{
    const std::string chosen = mServices.chosenDevice.text();
    return isHostName(&chosen) ? chosen : std::string{};
}

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
    if (tookOverFurther(*hostName) ||
        (mFirst->isConnected() && mFirst->deviceName() == *hostName)) {
        mFirst->takeOver();
        keepChoice();
        announceState();
        return;
    }
    if (isUnderWay)
        return;
    leaveDevice();
    mFirst->aim({*hostName}, false);
    mIsSearching = true;
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
    if (mFirst->isConnected() && mFirst->deviceName() == kOtherDeviceName &&
        mFirst->address() == *address) {
        keepChoice();
        announceState();
        return;
    }
    leaveDevice();
    mFirst->aim({kOtherDeviceName, {}, {{*address, kMainDataTrafficPort, 0}}}, false);
    mFirst->begin();
}

void ScreenServer::disconnectFromHost(const Notification& /*notification*/)
{
    takeRequest();
    const bool wasConnected = mFirst->isConnected();
    leaveDevice();
    mAutoConnector->userChoseNone();
    if (!wasConnected)
        announceState();
}

void ScreenServer::alsoConnectToHost(const Notification& notification)
{
    const std::string* hostName = notification.text(kConnectToHostNameKey);
    const bool isFirst = hostName && *hostName == mFirst->deviceName() && !isIdle();
    if (!isHostName(hostName) || isFirst)
        return;
    if (!mDesk.isAsking())
        mDesk.tell({});
    mAutoConnector->userChose(*hostName);
    mFurther.add(*hostName, false);
}

void ScreenServer::disconnectFurther(const Notification& notification)
{
    const std::string* hostName = notification.text(kConnectToHostNameKey);
    if (!hostName)
        return;
    mAutoConnector->userChoseNot(*hostName);
    mFurther.leave(*hostName);
}

void ScreenServer::answerQuery(const Notification& /*notification*/)
{
    if (mFirst->isConnected())
        postDevice(kQueryResultForConnectedHost);
    else
        announceState();
    if (mDesk.report() != PairingReport{})
        postPairing();
    if (!std::exchange(mPostedFurther, {}).empty())
        postFurther();
    // The setting of HiDPI resolutions is the system's: others may change it without a word.
    mFirst->preferencesChanged();
    mFurther.preferencesChanged();
}

void ScreenServer::preferencesChanged(const Notification& /*notification*/)
{
    mAutoConnector->preferencesChanged();
    mPacketLog.setOn(mServices.preferences.logsScreenPackets());
    mFirst->preferencesChanged();
    mFurther.preferencesChanged();
}

// --- whether a device is the one that the user means -----------------------------------------

/// The connection whose digits the user is to compare.
DeviceConnection* ScreenServer::asking() const
{
    return mFirst->isPairing() ? mFirst.get() : mFurther.pairing();
}

void ScreenServer::confirmDevice(const Notification& notification)
{
    const std::string* digits = notification.text(kDigitsKey);
    const PairingReport& report = mDesk.report();
    auto* connection = asking();
    if (connection && digits && report.state == PairingReport::State::comparing &&
        report.digits == *digits)
        connection->confirm();
}

void ScreenServer::refuseDevice(const Notification& notification)
{
    const std::string* digits = notification.text(kDigitsKey);
    const PairingReport& report = mDesk.report();
    const bool isMeant = report.state == PairingReport::State::confirmed ||
                         (mDesk.isAsking() && digits && report.digits == *digits);
    if (isMeant && mFirst->isPairing())
        disconnectFromHost(notification);
    else if (const auto* further = isMeant ? mFurther.pairing() : nullptr)
        mFurther.leave(std::string(further->deviceName()));
}

/// A device that is no longer known is left.
void ScreenServer::pairedDevicesChanged(const Notification& /*notification*/)
{
    if (!mFirst->isStillKnown()) {
        takeRequest();
        leaveDevice();
    }
    mFirst->preferencesChanged();
    mFurther.pairedDevicesChanged();
    mAutoConnector->pairedDevicesChanged();
}

} // namespace farview
