#include "Applications/Device/DeviceServer.h"

#include "Common/FVEConstants.h"
#include "Common/NSString_Additions.h"

#include <algorithm>
#include <utility>

namespace farview
{

namespace
{

/// All connections together, those that are saying goodbye included.
constexpr std::size_t mostGuests = 32;
constexpr std::chrono::milliseconds stopLimit{950};

std::map<std::string, Data> record(FVExConnectState state)
{
    return {{kFVEConnectionStateKey, Data::fromText(connectionStateString(state).value_or(""))}};
}

std::string inWords(const LinkOptions& options)
{
    const auto word = [](const char* what, bool on) { return on ? what : ""; };
    return std::string("these options:") + word(" touch", options.touch) +
           word(" retina", options.retina) + word(" hidpi", options.hiDPI) +
           word(" windows-move-back", options.windowsMoveBack) + word(" typing", options.typing);
}

std::string inWords(HostPicture::Verdict verdict)
{
    return verdict == HostPicture::Verdict::tooLarge ? "The picture is too large for this device."
                                                     : "The picture breaks the rules of the link.";
}

} // namespace

DeviceServer::DeviceServer(DeviceSettings settings, NetServicePublisher& publisher,
                           Platform& platform, LinkTimes times, Glass* glass)
    : mSettings(std::move(settings)), mPublisher(publisher), mPlatform(platform),
      mLog(*platform.log), mComputers(*platform.preferences, PairedPeers::computers), mTimes(times),
      mGlass(glass)
{
}

bool DeviceServer::start()
{
    if (!listen())
        return false;
    QObject::connect(&mServer, &QTcpServer::newConnection, &mServer, [this] { takeConnections(); });
    if (mSettings.pairsOnce)
        mPairsOnceUntil = mPlatform.runLoop->now() + PairingGuard::memory;
    hasKey();
    computersChanged();
    announce();
    return true;
}

bool DeviceServer::listen()
{
    DeviceStatus status = mStatus;
    if (!mServer.listen(mSettings.address, mSettings.port)) {
        mLog.write(LogLevel::warning,
                   "Port " + std::to_string(mSettings.port) +
                       " cannot be used: " + mServer.errorString().toStdString());
        if (!mServer.listen(mSettings.address, 0))
            return false;
    }
    status.port = mServer.serverPort();
    if (status.port != kMainDataTrafficPort)
        mLog.write(LogLevel::warning,
                   "Hosts find this device by its name only: connecting by address needs port " +
                       std::to_string(kMainDataTrafficPort) + ".");
    tell(status);
    return true;
}

void DeviceServer::announce()
{
    mPublisher.setDelegate(weak_from_this());
    mPublisher.publish({mSettings.name, kVirtualScreenServiceName, mStatus.port,
                        record(FVExConnectStateNotConnected), mSettings.hostName});
}

void DeviceServer::didPublish(const std::string& name)
{
    DeviceStatus status = mStatus;
    status.announcedName = plainLinkText(name, kLinkTextLimit);
    status.trouble.clear();
    mLog.write(LogLevel::info,
               "Announced as \"" + name + "\", port " + std::to_string(status.port));
    tell(status);
}

void DeviceServer::willRename(const std::string& name)
{
    mLog.write(LogLevel::warning, "Another device has this name; trying \"" + name + "\"");
}

void DeviceServer::didNotPublish(const std::string& reason)
{
    DeviceStatus status = mStatus;
    status.announcedName.clear();
    status.trouble = plainLinkText(reason, kLinkTextLimit);
    mLog.write(LogLevel::error, "This device cannot be announced: " + status.trouble);
    tell(status);
}

// --- who is let in ---------------------------------------------------------------------------

void DeviceServer::takeConnections()
{
    while (auto socket = mServer.next())
        admit(std::move(socket));
}

void DeviceServer::admit(std::unique_ptr<QSslSocket> socket)
{
    const auto waiting = std::count_if(mGuests.begin(), mGuests.end(),
                                       [](const Guest& guest) { return guest.isWaiting; });
    if (static_cast<std::size_t>(waiting) >= mostWaiting)
        displaceOldestWaiting();
    if (mGuests.size() >= mostGuests)
        dropOldestLeaving();
    hasKey();
    mGuests.push_back(
        {LinkConnection::make(LinkSide::device, std::move(socket), weak_from_this(),
                              mKey.value_or(OwnKey()), ownGreeting(mGlass != nullptr), mTimes)});
}

/// A host introduces itself within moments, so the oldest that has not is the least likely to.
void DeviceServer::displaceOldestWaiting()
{
    const auto oldest = std::find_if(mGuests.begin(), mGuests.end(),
                                     [](const Guest& guest) { return guest.isWaiting; });
    oldest->isWaiting = false;
    oldest->link->refuse({LinkRefusalCode::tooManyWaiting, "Too many computers are connecting."});
    oldest->link->close({LinkGoodbyeCode::inUse, "Too many computers are connecting."});
}

void DeviceServer::dropOldestLeaving()
{
    const auto leaving = std::find_if(mGuests.begin(), mGuests.end(), [this](const Guest& guest) {
        return !guest.isWaiting && guest.link.get() != mUser && guest.link.get() != mStranger;
    });
    if (leaving != mGuests.end())
        mGuests.erase(leaving);
}

DeviceServer::Guest* DeviceServer::guest(const LinkConnection& connection)
{
    const auto found = std::find_if(mGuests.begin(), mGuests.end(), [&](const Guest& guest) {
        return guest.link.get() == &connection;
    });
    return found == mGuests.end() ? nullptr : &*found;
}

std::optional<LinkRefusal> DeviceServer::reasonToRefuse() const
{
    if (mIsStopping)
        return LinkRefusal{LinkRefusalCode::byUser, "This device is being switched off."};
    if (mSettings.refusal)
        return LinkRefusal{LinkRefusalCode::byUser, *mSettings.refusal};
    if (!mKey)
        return LinkRefusal{LinkRefusalCode::byUser, "This device's own key cannot be used."};
    if (mUser)
        return LinkRefusal{LinkRefusalCode::inUse, "This device is in use by another computer."};
    return std::nullopt;
}

void DeviceServer::linkDidGreet(LinkConnection& connection)
{
    const auto refusal = reasonToRefuse();
    if (!refusal)
        return connection.accept();
    guest(connection)->isWaiting = false;
    mLog.write(LogLevel::info, "Refused " + connection.peerAddress() + ": " + refusal->text);
    connection.refuse(*refusal);
}

std::optional<LinkRefusal> DeviceServer::linkWouldRefuse(LinkConnection& connection)
{
    guest(connection)->isWaiting = false;
    mLog.write(LogLevel::info, connection.peerAddress() + " asks whether it would be served");
    return reasonToRefuse();
}

// --- while it is used ------------------------------------------------------------------------

void DeviceServer::linkDidOpen(LinkConnection& connection)
{
    mLog.write(LogLevel::info,
               "Connected to the host at " + connection.peerAddress() + ", " + connection.cipher());
    mUser = &connection;
    if (mStranger == mUser)
        mStranger = nullptr;
    keepComputer(connection);
    DeviceStatus status = mStatus;
    status.toConfirm.reset();
    status.computers = mComputers.all();
    status.usedBy = connection.peerAddress();
    status.isPictureAgreed = connection.agreement().has(kLinkScreenFeature);
    status.options.reset();
    status.lastVerdict = HostPicture::Verdict::good;
    tellState();
    tell(status);
    if (status.isPictureAgreed)
        mPicture = std::make_unique<HostPicture>(
            connection.agreement(), *mGlass,
            [&connection](const LinkFrame& frame) { connection.send(frame); }, *mPlatform.runLoop);
}

void DeviceServer::linkDidReceive(LinkConnection& connection, const LinkFrame& frame)
{
    if (&connection != mUser)
        return;
    if (const auto* options = std::get_if<LinkOptions>(&frame))
        takeOptions(*options);
    if (mPicture)
        takePicture(connection, frame);
}

void DeviceServer::takeOptions(const LinkOptions& options)
{
    DeviceStatus status = mStatus;
    status.options = options;
    if (!mUser->agreement().has(kLinkInputFeature))
        status.options->touch = status.options->typing = false;
    mLog.write(LogLevel::info, "The host asks for " + inWords(options));
    tell(status);
}

void DeviceServer::takePicture(LinkConnection& connection, const LinkFrame& frame)
{
    awaitTurn();
    const auto verdict = mPicture->take(frame);
    if (verdict == HostPicture::Verdict::good)
        return;
    mPicture.reset();
    mLog.write(LogLevel::warning, inWords(verdict));
    DeviceStatus status = mStatus;
    status.lastVerdict = verdict;
    tell(status);
    connection.close({LinkGoodbyeCode::brokenRule, inWords(verdict)});
}

void DeviceServer::awaitTurn()
{
    if (std::exchange(mTurnIsAwaited, true))
        return;
    QMetaObject::invokeMethod(
        &mServer,
        [this] {
            mTurnIsAwaited = false;
            if (mPicture)
                mPicture->beginTurn();
        },
        Qt::QueuedConnection);
}

void DeviceServer::sendHostAway()
{
    if (mUser)
        mUser->close({LinkGoodbyeCode::byUser, "The device's user disconnected."});
}

void DeviceServer::linkDidEnd(LinkConnection& connection, const LinkEnd& end)
{
    const bool wasUser = mUser == &connection;
    if (mStranger == &connection)
        strangerLeft();
    if (wasUser)
        mUser = nullptr;
    else if (end.reason != LinkEndReason::closedHere)
        mLog.write(LogLevel::info, "Turned away " + connection.peerAddress() + ": " + end.text);
    std::erase_if(mGuests, [&](const Guest& guest) { return guest.link.get() == &connection; });
    if (wasUser)
        userLeft(end);
    finishWhenAlone();
}

void DeviceServer::userLeft(const LinkEnd& end)
{
    const bool vanished =
        end.reason != LinkEndReason::goodbye && end.reason != LinkEndReason::closedHere;
    mLog.write(vanished ? LogLevel::warning : LogLevel::info,
               "The host is gone" + (end.text.empty() ? "" : ": " + end.text));
    mPicture.reset();
    DeviceStatus status = mStatus;
    status.usedBy.reset();
    status.toConfirm.reset();
    status.isPictureAgreed = false;
    status.options.reset();
    tellState();
    tell(status);
}

void DeviceServer::tellState()
{
    if (!mIsStopping)
        mPublisher.updateTXTRecord(
            record(mUser ? FVExConnectStateConnected : FVExConnectStateNotConnected));
}

void DeviceServer::tell(const DeviceStatus& status)
{
    if (status == mStatus)
        return;
    mStatus = status;
    mChanged();
}

// --- the end ---------------------------------------------------------------------------------

void DeviceServer::stop(std::function<void()> then)
{
    if (std::exchange(mIsStopping, true))
        return;
    mStopped = std::move(then);
    mServer.close();
    mPublisher.stop();
    for (Guest& guest : mGuests) {
        guest.link->refuse(*reasonToRefuse());
        guest.link->close({LinkGoodbyeCode::quitting, "The device was switched off."});
    }
    mStopLimit.setSingleShot(true);
    QObject::connect(&mStopLimit, &QTimer::timeout, &mServer, [this] {
        mPicture.reset();
        mGuests.clear();
        finishWhenAlone();
    });
    mStopLimit.start(mGuests.empty() ? std::chrono::milliseconds(0) : stopLimit);
}

void DeviceServer::finishWhenAlone()
{
    if (!mIsStopping || !mGuests.empty())
        return;
    mStopLimit.stop();
    if (const auto then = std::exchange(mStopped, nullptr))
        then();
}

} // namespace farview
