// Whether a device is the one that the user means.

#include "Applications/ScreenCapture/DeviceConnection.h"

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

LinkTrust DeviceConnection::deviceDidProveKey(const std::string& key)
{
    const PeerTrust trust = trustIn(mServices.desk.peers().all(), key, serviceName());
    if (trust != PeerTrust::changed)
        return trust == PeerTrust::known;
    tell(Report::changed);
    return LinkGoodbye{LinkGoodbyeCode::notConfirmed, "Another device has this name here."};
}

std::optional<LinkGoodbye> DeviceConnection::mayNotAskUser()
{
    const bool isBusy = mServices.desk.isAsking() && !mIsPairing;
    const bool isClosed = mServices.desk.guard().isClosed(mServices.runLoop.now());
    if (!mIsAutomatic && !isBusy && !isClosed)
        return std::nullopt;
    tell(mIsAutomatic ? Report::unconfirmed : Report::tooManyTries);
    return LinkGoodbye{LinkGoodbyeCode::notConfirmed, "Nobody chose this device there."};
}

void DeviceConnection::deviceShowsDigits(const std::string& digits)
{
    if (!isConnecting())
        return;
    mIsPairing = true;
    tell(Report::comparing, digits);
}

void DeviceConnection::confirm()
{
    tell(Report::confirmed, mServices.desk.report().digits);
    mLink->confirm();
}

bool DeviceConnection::isStillKnown() const
{
    return !isConnected() ||
           trustIn(mServices.desk.peers().all(), mDevice.key, serviceName()) == PeerTrust::known;
}

/// One that came to nothing was a guess, if somebody is in between.
void DeviceConnection::pairingEnded()
{
    if (!mIsPairing)
        return;
    mServices.desk.guard().failed(mServices.runLoop.now());
    tell(Report::none);
    mIsPairing = false;
}

void DeviceConnection::deviceDidNotConnect(const LinkEnd& end)
{
    if (!isConnecting())
        return;
    const auto report = reportOf(end, end.isGuessSpent);
    if (end.isGuessSpent)
        mServices.desk.guard().failed(mServices.runLoop.now());
    if (mIsPairing)
        tell(Report::none);
    mIsPairing = false;
    // Who did not ask is told of danger only.
    if (report == Report::interfered || (report != Report::none && !mIsAutomatic))
        tell(report);
    mState = State::idle;
    mEvents.failed(whyNotConnected(end));
}

void DeviceConnection::deviceDidConnect(const ConnectedDevice& device)
{
    if (!isConnecting())
        return;
    mState = State::connected;
    mDevice = device;
    mServices.log.write(LogLevel::info, "Connected to " + deviceName() + " at " + device.address +
                                            ", " + device.cipher);
    keep(device);
    mEvents.opened();
    // They may have changed while the connection was made, and who it is was not known.
    sendOptions();
}

void DeviceConnection::keep(const ConnectedDevice& device)
{
    tell(Report::none);
    mIsPairing = false;
    const auto now = mServices.clock.date().time_since_epoch();
    const Date today{std::chrono::duration<double>(now).count()};
    if (!device.wasPaired)
        mServices.desk.peers().used(device.key, serviceName(), today);
    else if (!mServices.desk.peers().add({device.key, serviceName(), today, today}))
        mServices.log.write(LogLevel::error,
                            deviceName() + " cannot be remembered: it will be asked about again");
}

/// What is asked about another device stays.
void DeviceConnection::tell(Report state, const std::string& digits)
{
    if (mServices.desk.isAsking() && !mIsPairing)
        return;
    const std::string device = serviceName().empty() ? address() : serviceName();
    mServices.desk.tell({state, digits, state == Report::none ? std::string{} : device});
}

} // namespace farview
