// Whether a device is the one that the user means.

#include "Applications/ScreenCapture/ScreenServer.h"

#include "Common/FVEConstants.h"
#include "Common/FVEDistributedNotifications.h"

#include <algorithm>
#include <utility>

namespace farview
{

namespace
{

using Report = PairingReport::State;

/// What the user is to know of a connection that did not come about; none: the usual error.
Report reportOf(const LinkEnd& end, bool wasPairing)
{
    if (end.refusal == LinkRefusalCode::noAgreement)
        return Report::tooOld;
    if (end.goodbye == LinkGoodbyeCode::tooManyTries)
        return Report::tooManyTries;
    if (end.goodbye == LinkGoodbyeCode::notConfirmed)
        return Report::refusedThere;
    // No device answers by itself what it was not offered.
    if (end.reason == LinkEndReason::notSecured || end.reason == LinkEndReason::noAgreement)
        return Report::interfered;
    if (end.reason == LinkEndReason::noOwnKey)
        return Report::keyUnusable;
    return wasPairing ? Report::notCompared : Report::none;
}

std::string whyNotConnected(const LinkEnd& end)
{
    if (end.reason != LinkEndReason::refused)
        return end.text;
    return end.text.empty() ? "The device refused" : "The device refused: " + end.text;
}

} // namespace

LinkTrust ScreenServer::deviceDidProveKey(const std::string& key)
{
    const PeerTrust trust = trustIn(mPaired.all(), key, mServiceName);
    if (trust != PeerTrust::changed)
        return trust == PeerTrust::known;
    setPairing(Report::changed);
    return LinkGoodbye{LinkGoodbyeCode::notConfirmed, "Another device has this name here."};
}

std::optional<LinkGoodbye> ScreenServer::mayNotAskUser()
{
    if (!mIsAutomatic && !mGuard.isClosed(mServices.runLoop.now()))
        return std::nullopt;
    setPairing(mIsAutomatic ? Report::unconfirmed : Report::tooManyTries);
    return LinkGoodbye{LinkGoodbyeCode::notConfirmed, "Nobody chose this device there."};
}

void ScreenServer::deviceShowsDigits(const std::string& digits)
{
    if (mState != State::connecting)
        return;
    setPairing(Report::comparing, digits);
}

bool ScreenServer::isComparing(const Notification& answer) const
{
    const std::string* digits = answer.text(kDigitsKey);
    return digits && mPairing.state == Report::comparing && mPairing.digits == *digits;
}

void ScreenServer::confirmDevice(const Notification& notification)
{
    if (!isComparing(notification))
        return;
    setPairing(Report::confirmed, mPairing.digits);
    mServices.link.confirm();
}

void ScreenServer::refuseDevice(const Notification& notification)
{
    if (isComparing(notification) || mPairing.state == Report::confirmed)
        disconnectFromHost(notification);
}

/// A device that is no longer known is left.
void ScreenServer::pairedDevicesChanged(const Notification& /*notification*/)
{
    const bool isConnected = mState == State::connected;
    if (isConnected && trustIn(mPaired.all(), mDevice.key, mServiceName) != PeerTrust::known) {
        takeRequest();
        leaveDevice();
    }
    mAutoConnector->pairedDevicesChanged();
}

/// One that came to nothing was a guess, if somebody is in between.
void ScreenServer::pairingEnded()
{
    if (!isPairing())
        return;
    mGuard.failed(mServices.runLoop.now());
    setPairing(Report::none);
}

void ScreenServer::deviceDidNotConnect(const LinkEnd& end)
{
    if (mState != State::connecting)
        return;
    const auto report = reportOf(end, end.isGuessSpent);
    if (end.isGuessSpent)
        mGuard.failed(mServices.runLoop.now());
    if (isPairing())
        setPairing(Report::none);
    // Who did not ask is told of danger only.
    if (report == Report::interfered || (report != Report::none && !mIsAutomatic))
        setPairing(report);
    giveUp(whyNotConnected(end));
}

void ScreenServer::keepDevice(const ConnectedDevice& device)
{
    mDevice = device;
    setPairing(Report::none);
    const auto now = mServices.clock.date().time_since_epoch();
    const Date today{std::chrono::duration<double>(now).count()};
    if (!device.wasPaired)
        mPaired.used(device.key, mServiceName, today);
    else if (!mPaired.add({device.key, mServiceName, today, today}))
        mServices.log.write(LogLevel::error,
                            mDeviceName + " cannot be remembered: it will be asked about again");
}

void ScreenServer::strangerIsInSight(const std::string& serviceName)
{
    const bool isTold = mPairing.state == Report::unconfirmed;
    if (serviceName.empty() && isTold)
        setPairing(Report::none);
    if (serviceName.empty() || (!isTold && mPairing != PairingReport{}))
        return;
    mServiceName = serviceName;
    setPairing(Report::unconfirmed);
}

void ScreenServer::setPairing(PairingReport::State state, const std::string& digits)
{
    const std::string& device = mServiceName.empty() ? mDeviceAddress : mServiceName;
    const PairingReport report{state, digits, state == Report::none ? std::string{} : device};
    if (std::exchange(mPairing, report) != report)
        postPairing();
}

void ScreenServer::postPairing()
{
    post(kServerPairingDidChange, {{kPairingReportKey, textOfPairingReport(mPairing)}});
}

} // namespace farview
