#pragma once

#include "Applications/Device/HostPicture.h"
#include "Common/PairedPeers.h"
#include "Link/LinkConnection.h"
#include "Link/LinkListener.h"
#include "Link/PairingGuard.h"
#include "Platform/Clock.h"
#include "Platform/Log.h"
#include "Platform/NetServicePublisher.h"
#include "Platform/Platform.h"
#include "Platform/RunLoop.h"

#include <QHostAddress>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// What the user asked for at the start.
struct DeviceSettings {
    std::string name;
    std::string hostName;
    std::uint16_t port = 6001;
    /// Where to listen; every interface unless a test says otherwise.
    QHostAddress address = QHostAddress(QHostAddress::Any);
    /// With a reason here every host is refused: for maintenance.
    std::optional<std::string> refusal = std::nullopt;
    /// Where the device's own key is kept.
    std::string keyPath = {};
    /// The next computer that asks is confirmed here without a question: for a device that nobody
    /// can touch. For one computer, and ten minutes.
    bool pairsOnce = false;
};

/// A computer that wants to use the device and is not known here yet.
struct ComputerToConfirm {
    std::string digits;           ///< that it shows too, unless somebody is in between
    std::string address;          ///< numeric
    bool isConfirmedHere = false; ///< while its own user has not said yes

    bool operator==(const ComputerToConfirm&) const = default;
};

/// What there is to show. All texts are printable.
struct DeviceStatus {
    /// As announced; empty while it is not. May differ from what was asked for when another had it.
    std::string announcedName;
    /// 0 while nothing listens.
    std::uint16_t port = 0;
    /// Why it is not announced. Empty when all is well.
    std::string trouble = {};
    /// The numeric address of the host that uses the device.
    std::optional<std::string> usedBy = {};
    /// Whether a picture is to come from that host.
    bool isPictureAgreed = false;
    /// What that host wants; nothing until it told.
    std::optional<LinkOptions> options = {};
    /// Why the last host was sent away; "good" when it was not, or another has come.
    HostPicture::Verdict lastVerdict = HostPicture::Verdict::good;
    std::optional<ComputerToConfirm> toConfirm = {};
    /// Those that may use the device without a question; named by where they were seen last.
    std::vector<PairedPeer> computers = {};
    /// Why the device's own key cannot be used, so that no computer is let in; in English.
    std::string keyTrouble = {};

    bool operator==(const DeviceStatus&) const = default;
};

/// A virtual-screen device: announces itself, lets one host in that its user confirmed, refuses
/// others with a reason, and says goodbye. Made with `std::make_shared`. Main thread only.
class DeviceServer final : public LinkConnectionDelegate,
                           public NetServicePublisherDelegate,
                           public std::enable_shared_from_this<DeviceServer>
{
public:
    /// How many connections may be on their way to being known; one more displaces the oldest.
    static constexpr std::size_t mostWaiting = 4;

    /// `publisher`, `platform` (its log, clock, loop and preferences are used) and `glass` outlive
    /// the server. Without a glass no host is offered to send pictures.
    DeviceServer(DeviceSettings settings, NetServicePublisher& publisher, Platform& platform,
                 LinkTimes times, Glass* glass = nullptr);

    /// Listens and announces. A port that is taken is replaced by a free one. False when there is
    /// none at all. Called once.
    bool start();
    /// Takes the announcement back and says goodbye. `then` is called on a later turn, within a
    /// second. A second call does nothing.
    void stop(std::function<void()> then);
    /// Says goodbye to the host that uses the device; another may come then.
    void sendHostAway();
    /// The user sees these digits at the computer, too. Whether they are those in question.
    bool acceptDigits(const std::string& digits);
    /// The user does not see them there, or does not want to; nothing when nobody asks.
    void refuseComputer();
    /// From now on the computer with that key has to be confirmed again; it is sent away.
    void forgetComputer(const std::string& key);
    /// Somebody may have changed which computers are known: one that no longer is, is sent away.
    void computersChanged();

    const DeviceStatus& status() const { return mStatus; }
    /// `changed` is called whenever the status has changed, never inside a call to the server but
    /// `start`.
    void setObserver(std::function<void()> changed) { mChanged = std::move(changed); }

    void linkDidGreet(LinkConnection& connection) override;
    std::optional<LinkRefusal> linkWouldRefuse(LinkConnection& connection) override;
    LinkTrust linkDidProveKey(LinkConnection& connection) override;
    std::optional<LinkGoodbye> linkMayNotAskUser(LinkConnection& connection) override;
    void linkAsksUser(LinkConnection& connection) override;
    void linkDidOpen(LinkConnection& connection) override;
    void linkDidReceive(LinkConnection& connection, const LinkFrame& frame) override;
    void linkDidEnd(LinkConnection& connection, const LinkEnd& end) override;
    void didPublish(const std::string& name) override;
    void willRename(const std::string& name) override;
    void didNotPublish(const std::string& reason) override;

private:
    struct Guest {
        std::shared_ptr<LinkConnection> link;
        /// Is not known yet, nor compared with.
        bool isWaiting = true;
    };

    bool listen();
    void announce();
    void takeConnections();
    void admit(std::unique_ptr<QSslSocket> socket);
    void displaceOldestWaiting();
    void dropOldestLeaving();
    Guest* guest(const LinkConnection& connection);
    std::optional<LinkRefusal> reasonToRefuse() const;
    bool hasKey();
    std::optional<LinkGoodbye> reasonNotToAsk(const LinkConnection& connection) const;
    void strangerLeft();
    void keepComputer(const LinkConnection& connection);
    Date today() const;
    void takeOptions(const LinkOptions& options);
    void takePicture(LinkConnection& connection, const LinkFrame& frame);
    void awaitTurn();
    void userLeft(const LinkEnd& end);
    void tellState();
    void tell(const DeviceStatus& status);
    void finishWhenAlone();

    DeviceSettings mSettings;
    NetServicePublisher& mPublisher;
    Platform& mPlatform;
    Log& mLog;
    PairedPeers mComputers;
    PairingGuard mGuard;
    std::optional<OwnKey> mKey;
    LinkTimes mTimes;
    Glass* mGlass;
    LinkListener mServer;
    std::vector<Guest> mGuests;
    // Owned by `mGuests`.
    LinkConnection* mUser = nullptr;     ///< the one that is known
    LinkConnection* mStranger = nullptr; ///< the one that the user is asked about
    Duration mPairsOnceUntil{0};
    std::unique_ptr<HostPicture> mPicture; ///< while that one may send pictures
    bool mTurnIsAwaited = false;
    DeviceStatus mStatus;
    std::function<void()> mChanged = [] {};
    std::function<void()> mStopped;
    bool mIsStopping = false;
    QTimer mStopLimit;
};

} // namespace farview
