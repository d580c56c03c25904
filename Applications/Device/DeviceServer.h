#pragma once

#include "Applications/Device/HostPicture.h"
#include "Common/PairedPeers.h"
#include "Link/LinkConnection.h"
#include "Platform/Log.h"
#include "Platform/NetServicePublisher.h"

#include <QTcpServer>

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
    /// Why no computer is let in, and what to do about it: the device's own key cannot be used.
    std::string keyTrouble = {};

    bool operator==(const DeviceStatus&) const = default;
};

/// A virtual-screen device: announces itself, lets one host in, refuses others with a reason, and
/// says goodbye. Made with `std::make_shared`. Main thread only.
class DeviceServer final : public LinkConnectionDelegate,
                           public NetServicePublisherDelegate,
                           public std::enable_shared_from_this<DeviceServer>
{
public:
    /// How many connections may wait for their greeting; one more displaces the oldest.
    static constexpr std::size_t mostWaiting = 4;

    /// `publisher`, `log` and `glass` outlive the server. Without a glass no host is offered to
    /// send pictures.
    DeviceServer(DeviceSettings settings, NetServicePublisher& publisher, Log& log, LinkTimes times,
                 Glass* glass = nullptr);

    /// Listens and announces. A port that is taken is replaced by a free one. False when there is
    /// none at all. Called once.
    bool start();
    /// Takes the announcement back and says goodbye. `then` is called on a later turn, within a
    /// second. A second call does nothing.
    void stop(std::function<void()> then);
    /// Says goodbye to the host that uses the device; another may come then.
    void sendHostAway();

    /// The user says that the computer that waits shows the same digits.
    void confirmComputer();
    /// The user says that it does not, or does not want it.
    void refuseComputer();
    /// Confirms the computer that waits if these are its digits; false when they are not.
    bool acceptDigits(const std::string& digits);
    /// From now on the computer with that key is asked for digits again; if it uses the device, it
    /// is sent away.
    void forgetComputer(const std::string& key);

    const DeviceStatus& status() const { return mStatus; }
    /// `changed` is called whenever the status has changed, never inside a call to the server but
    /// `start`.
    void setObserver(std::function<void()> changed) { mChanged = std::move(changed); }

    void linkDidGreet(LinkConnection& connection) override;
    std::optional<LinkRefusal> linkWouldRefuse(LinkConnection& connection) override;
    void linkDidOpen(LinkConnection& connection) override;
    void linkDidReceive(LinkConnection& connection, const LinkFrame& frame) override;
    void linkDidEnd(LinkConnection& connection, const LinkEnd& end) override;
    void didPublish(const std::string& name) override;
    void willRename(const std::string& name) override;
    void didNotPublish(const std::string& reason) override;

private:
    struct Guest {
        std::shared_ptr<LinkConnection> link;
        /// Has not greeted yet.
        bool isWaiting = true;
    };

    bool listen();
    void announce();
    void takeConnections();
    void admit(std::unique_ptr<QTcpSocket> socket);
    void displaceOldestWaiting();
    void dropOldestLeaving();
    Guest* guest(const LinkConnection& connection);
    std::optional<LinkRefusal> reasonToRefuse() const;
    void takeOptions(const LinkOptions& options);
    void takePicture(LinkConnection& connection, const LinkFrame& frame);
    void awaitTurn();
    void userLeft(const LinkEnd& end);
    void tellState();
    void tell(const DeviceStatus& status);
    void finishWhenAlone();

    DeviceSettings mSettings;
    NetServicePublisher& mPublisher;
    Log& mLog;
    LinkTimes mTimes;
    Glass* mGlass;
    QTcpServer mServer;
    std::vector<Guest> mGuests;
    /// The one that was accepted; owned by `mGuests`.
    LinkConnection* mUser = nullptr;
    std::unique_ptr<HostPicture> mPicture; ///< while that one may send pictures
    bool mTurnIsAwaited = false;
    DeviceStatus mStatus;
    std::function<void()> mChanged = [] {};
    std::function<void()> mStopped;
    bool mIsStopping = false;
    QTimer mStopLimit;
};

} // namespace farview
