// Which computers may use the device.

#include "Applications/Device/DeviceServer.h"

#include "Common/Rules/PairingReport.h"
#include "Link/Keys/PairingProof.h"

#include <utility>

namespace farview
{

/// Tried again whenever a host comes: the user may have mended it.
bool DeviceServer::hasKey()
{
    if (mKey)
        return true;
    auto result = ownKey(mSettings.keyPath);
    mKey = std::move(result.key);
    DeviceStatus status = mStatus;
    status.keyTrouble = result.trouble;
    if (status.keyTrouble != mStatus.keyTrouble && !mKey)
        mLog.write(LogLevel::error, result.trouble);
    tell(status);
    return mKey.has_value();
}

LinkTrust DeviceServer::linkDidProveKey(LinkConnection& connection)
{
    guest(connection)->isWaiting = false;
    if (mUser)
        return LinkGoodbye{LinkGoodbyeCode::inUse, "This device is in use by another computer."};
    const bool isKnown = trustIn(mComputers.all(), connection.peerKey(), {}) == PeerTrust::known;
    if (!isKnown)
        return false;
    // Whom the user knows does not wait for whom the user does not.
    if (mStranger) {
        mStranger->close({LinkGoodbyeCode::inUse, "Another computer uses this device now."});
        strangerLeft();
    }
    mUser = &connection;
    return true;
}

std::optional<LinkGoodbye> DeviceServer::linkMayNotAskUser(LinkConnection& connection)
{
    const auto reason = reasonNotToAsk(connection);
    if (reason)
        mLog.write(LogLevel::info, "Sent " + connection.peerAddress() + " away: " + reason->text);
    else if (mUser != &connection)
        mStranger = &connection;
    return reason;
}

std::optional<LinkGoodbye> DeviceServer::reasonNotToAsk(const LinkConnection& connection) const
{
    if (mUser && mUser != &connection)
        return LinkGoodbye{LinkGoodbyeCode::inUse, "This device is in use by another computer."};
    if (mStranger)
        return LinkGoodbye{LinkGoodbyeCode::inUse, "Another computer is being confirmed."};
    if (mGuard.isClosed(mPlatform.runLoop->now()))
        return LinkGoodbye{LinkGoodbyeCode::tooManyTries,
                           "Too many computers were refused: try again in ten minutes."};
    return std::nullopt;
}

void DeviceServer::linkAsksUser(LinkConnection& connection)
{
    DeviceStatus status = mStatus;
    status.toConfirm = ComputerToConfirm{connection.digits(), connection.peerAddress()};
    mLog.write(LogLevel::info, "The computer at " + connection.peerAddress() + " shows " +
                                   groupedDigits(connection.digits()) +
                                   ", unless somebody is in between");
    tell(status);
    if (mPlatform.runLoop->now() < mPairsOnceUntil)
        acceptDigits(connection.digits());
}

bool DeviceServer::acceptDigits(const std::string& digits)
{
    LinkConnection* const connection = mStranger ? mStranger : mUser;
    if (!connection || !mStatus.toConfirm || mStatus.toConfirm->digits != digits)
        return false;
    DeviceStatus status = mStatus;
    status.toConfirm->isConfirmedHere = true;
    tell(status);
    connection->confirm();
    return true;
}

void DeviceServer::refuseComputer()
{
    LinkConnection* const connection = mStranger ? mStranger : mUser;
    if (connection && mStatus.toConfirm)
        connection->close({LinkGoodbyeCode::notConfirmed, "The device's user refused."});
}

void DeviceServer::forgetComputer(const std::string& key)
{
    mComputers.forget(key);
    computersChanged();
}

void DeviceServer::computersChanged()
{
    DeviceStatus status = mStatus;
    status.computers = mComputers.all();
    tell(status);
    // One that is compared with at this moment is known when its users say so.
    const bool isCompared = mUser && !mUser->isOpen() && !mUser->digits().empty();
    if (mUser && !isCompared && trustIn(status.computers, mUser->peerKey(), {}) != PeerTrust::known)
        mUser->close({LinkGoodbyeCode::byUser, "The device's user removed this computer."});
}

/// Whoever showed digits and was not confirmed has had its guess.
void DeviceServer::strangerLeft()
{
    if (!std::exchange(mStranger, nullptr)->digits().empty())
        mGuard.failed(mPlatform.runLoop->now());
    DeviceStatus status = mStatus;
    status.toConfirm.reset();
    tell(status);
}

void DeviceServer::keepComputer(const LinkConnection& connection)
{
    const std::string& key = connection.peerKey();
    const std::string& address = connection.peerAddress();
    if (!connection.wasPaired()) {
        mComputers.used(key, address, today(), true);
        return;
    }
    mPairsOnceUntil = Duration::zero();
    mComputers.forget(key);
    const bool isStored = mComputers.add({key, {}, today(), today()});
    mComputers.used(key, address, today(), true);
    if (!isStored)
        mLog.write(LogLevel::error, "The computer at " + address +
                                        " cannot be remembered: it will be asked about again");
}

Date DeviceServer::today() const
{
    const auto now = mPlatform.clock->date().time_since_epoch();
    return {std::chrono::duration<double>(now).count()};
}

} // namespace farview
