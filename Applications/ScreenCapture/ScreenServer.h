#pragma once

#include "Applications/ScreenCapture/AutoConnector.h"
#include "Applications/ScreenCapture/DeviceLink.h"
#include "Applications/ScreenCapture/ScreenSession.h"
#include "Common/Bonjour/QLNBonjourBrowser.h"
#include "Common/FVEPreferences.h"
#include "Common/PairedPeers.h"
#include "Common/Rules/PairingReport.h"
#include "Link/PairingGuard.h"
#include "Platform/Clock.h"
#include "Platform/Log.h"
#include "Platform/NotificationCenter.h"
#include "Platform/RunLoop.h"

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// A text of at most 255 bytes in plain memory, which may be shared with whoever outlives a crash
/// of the server. What is read may be half of what was written: to be checked.
class KeptText
{
public:
    std::string text() const
    {
        return {mBytes.begin(), std::find(mBytes.begin(), mBytes.end(), '\0')};
    }
    void set(const std::string& text)
    {
        mBytes.fill('\0');
        text.copy(mBytes.data(), mBytes.size() - 1);
    }

private:
    std::array<char, 256> mBytes{};
};

/// The screen server: does what the panel asks by notification, and reports what became of it.
///
/// It connects to one device at a time. A new request replaces what is under way; while there is
/// none, the server connects by itself: to the device that the user chose last and that was
/// connected, else to those that the user ticked (`AutoConnector`). A device is its key: one that
/// the user asks for and that is not known is compared with first, any other is left. One that
/// shows pictures becomes a monitor (`ScreenSession`). It ends by the terminate notification or by
/// `quit`, and by nothing else. Made with `std::make_shared`. Main thread only.
class ScreenServer final : public DeviceLinkDelegate,
                           public AutoConnectServer,
                           public std::enable_shared_from_this<ScreenServer>
{
public:
    /// What it works with; all of it outlives the server.
    struct Services {
        Discovery& discovery;
        RunLoop& runLoop;
        NotificationCenter& localCenter;
        DistributedNotificationCenter& center;
        FVEPreferences& preferences;
        DeviceLink& link;
        VirtualScreens& screens;
        Log& log;
        Clock& clock;
        Preferences& storage; ///< for what the server keeps for itself
        /// The host name or address that the user chose and that was connected, until the user
        /// chooses otherwise: what a server finds there that starts after a crash.
        KeptText& chosenDevice;
    };
    struct Ending {
        /// It was asked to quit: from now on another server may be started.
        std::function<void()> quitting = [] {};
        /// Everything is said and closed; at most a second after `quitting`.
        std::function<void()> finished = [] {};
    };

    /// How long a device that is asked for by name may take to be found.
    static constexpr Duration searchLimit{6.0};

    /// A connection is reported no earlier after the request for it: the panel's spinner appears a
    /// quarter of a second after the choice, and only a report that comes later takes it down.
    static constexpr Duration earliestReport{0.4};

    ScreenServer(Services services, Ending ending);

    /// Begins to listen. Until `start` only the latest request is kept, because an earlier server
    /// may still be saying goodbye to the device; the request to terminate is followed at once.
    /// Called once, before `start`.
    void listen();
    /// Begins to browse, announces that no device is connected, and does what was asked for
    /// meanwhile, or asks for a request that was posted before anybody listened. Called once;
    /// nothing happens when the server was asked to quit before.
    void start();
    /// Leaves the device with a goodbye, says so, and finishes. A second call does nothing.
    void quit();

    LinkTrust deviceDidProveKey(const std::string& key) override;
    std::optional<LinkGoodbye> mayNotAskUser() override;
    void deviceShowsDigits(const std::string& digits) override;
    void deviceDidConnect(const ConnectedDevice& device) override;
    void deviceDidNotConnect(const LinkEnd& end) override;
    void deviceDidSend(const LinkFrame& frame) override;
    void deviceHasRoom() override;
    void deviceDidDisconnect(const LinkEnd& end) override;
    bool isIdle() const override { return mState == State::idle; }
    std::string chosenDevice() const override;
    void connectByItself(const Target& target) override;
    void strangerIsInSight(const std::string& serviceName) override;

private:
    enum class State { waiting, idle, searching, connecting, connected, quitting };
    using Operation = void (ScreenServer::*)(const Notification&);

    void observe(const char* name, Operation operation);
    void observeRequest(const char* name, Operation operation);
    void observeReconnection();
    void startBrowsing();
    void observeBrowser(const char* name);
    void connectToHost(const Notification& notification);
    void connectToTicket(const Notification& notification);
    void disconnectFromHost(const Notification& notification);
    void answerQuery(const Notification& notification);
    void preferencesChanged(const Notification& notification);

    void takeRequest();
    void keepChoice();
    bool isConnectedTo(const std::string& deviceName, const std::string& address) const;
    bool tookOverAttempt(const std::string& hostName);
    void leaveDevice();
    void takeOrder(const Target& target, bool isAutomatic);
    void search();
    void searchEnded(unsigned request);
    void connect(const std::vector<Endpoint>& endpoints);
    void giveUp(const std::string& why);
    void confirmDevice(const Notification& notification);
    void refuseDevice(const Notification& notification);
    void pairedDevicesChanged(const Notification& notification);
    /// Whether the user was shown digits, and nothing came of it yet.
    bool isPairing() const { return !mPairing.digits.empty(); }
    bool isComparing(const Notification& answer) const;
    void pairingEnded();
    void keepDevice(const ConnectedDevice& device);
    void setPairing(PairingReport::State state, const std::string& digits = {});
    void postPairing();
    void announceState();
    void post(const char* name, DistributedNotificationCenter::TextUserInfo userInfo = {});
    void postDevice(const char* name);
    void finishWhenSaid();
    LinkOptions options();
    void sendOptions();
    void beginScreen();
    void endScreen();
    void postScreen();

    Services mServices;
    Ending mEnding;
    std::shared_ptr<QLNBonjourBrowser> mBrowser;
    std::shared_ptr<AutoConnector> mAutoConnector;
    Subscription mReconnection;
    State mState = State::waiting;
    /// The latest request of the time before the start, if any.
    std::function<void()> mHeldRequest;
    /// The device asked for: its host name, or "Other".
    std::string mDeviceName;
    /// Where it is: as typed for "Other", else as it was reached.
    std::string mDeviceAddress;
    /// As the user knows it; empty for one that was asked for by its address.
    std::string mServiceName;
    ConnectedDevice mDevice; ///< while connected
    PairedPeers mPaired;
    PairingGuard mGuard;
    PairingReport mPairing;
    /// Whether the device was told what it needs to know the digits, before they are shown here.
    bool mIsGuess = false;
    LinkOptions mSentOptions;
    /// As the device that is connected told it.
    std::optional<LinkDeviceScreen> mDeviceScreen;
    PacketLog mPacketLog;
    std::shared_ptr<ScreenSession> mScreen;
    /// Nobody asked for what is connected or under way.
    bool mIsAutomatic = false;
    unsigned mRequest = 0;
    Duration mRequestedAt = -earliestReport;
    bool mGoodbyeSaid = false;
    bool mLastPostSent = false;
    bool mFinished = false;
};

} // namespace farview
