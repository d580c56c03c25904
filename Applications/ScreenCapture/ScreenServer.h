#pragma once

#include "Applications/ScreenCapture/AutoConnector.h"
#include "Applications/ScreenCapture/DeviceConnection.h"
#include "Applications/ScreenCapture/FurtherConnections.h"
#include "Common/Bonjour/QLNBonjourBrowser.h"
#include "Common/FVEPreferences.h"
#include "Common/PacketLog.h"
#include "Platform/Clock.h"
#include "Platform/Log.h"
#include "Platform/NotificationCenter.h"
#include "Platform/RunLoop.h"

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
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
/// The panel's menu chooses one device; others may be used beside it (`FurtherConnections`). A new
/// request replaces what is under way; while there is none, the server connects by itself: to the
/// device that the user chose last and that was connected, else to those that the user ticked
/// (`AutoConnector`). It ends by the terminate notification or by `quit`, and by nothing else. Made
/// with `std::make_shared`. Main thread only.
class ScreenServer final : public AutoConnectServer,
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
        DeviceLinks makeLink;
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
    /// Leaves the devices with a goodbye, says so, and finishes. A second call does nothing.
    void quit();

    bool isIdle() const override;
    std::string chosenDevice() const override;
    bool takesFurther() const override;
    bool uses(const std::string& hostName) const override;
    void connectByItself(const DeviceTarget& target) override;
    void strangerIsInSight(const std::string& serviceName) override;

private:
    enum class State { waiting, running, quitting };
    using Operation = void (ScreenServer::*)(const Notification&);

    void observe(const char* name, Operation operation);
    void observeRequest(const char* name, Operation operation);
    void observeReconnection();
    void startBrowsing();
    void observeBrowser(const char* name);
    void connectToHost(const Notification& notification);
    void connectToTicket(const Notification& notification);
    void disconnectFromHost(const Notification& notification);
    void alsoConnectToHost(const Notification& notification);
    void disconnectFurther(const Notification& notification);
    void answerQuery(const Notification& notification);
    void preferencesChanged(const Notification& notification);
    void confirmDevice(const Notification& notification);
    void refuseDevice(const Notification& notification);
    void pairedDevicesChanged(const Notification& notification);

    std::shared_ptr<DeviceConnection> makeConnection();
    void setFirst(std::shared_ptr<DeviceConnection> connection);
    FurtherConnections::Services furtherServices();
    void takeRequest();
    void keepChoice();
    bool tookOverAttempt(const std::string& hostName);
    bool tookOverFurther(const std::string& hostName);
    void leaveDevice();
    void search();
    void searchEnded(unsigned request);
    void giveUp(const std::string& why);
    void deviceCame();
    void deviceWent(const LinkEnd& end);
    DeviceConnection* asking() const;
    void announceState();
    void announceNone();
    void post(const char* name, DistributedNotificationCenter::TextUserInfo userInfo = {});
    void postDevice(const char* name);
    void postPairing();
    void postScreen();
    void postFurther();
    void finishWhenSaid();

    Services mServices;
    Ending mEnding;
    PairingDesk mDesk;
    PacketLog mPacketLog;
    std::shared_ptr<QLNBonjourBrowser> mBrowser;
    std::shared_ptr<AutoConnector> mAutoConnector;
    Subscription mReconnection;
    State mState = State::waiting;
    /// The latest request of the time before the start, if any.
    std::function<void()> mHeldRequest;
    /// To the device that the menu chooses, or none.
    std::shared_ptr<DeviceConnection> mFirst;
    FurtherConnections mFurther;
    std::string mPostedFurther;
    bool mIsSearching = false; ///< for the one that `mFirst` is about
    unsigned mRequest = 0;
    Duration mRequestedAt = -earliestReport;
    std::size_t mGoodbyesLeft = 0;
    bool mLastPostSent = false;
    bool mFinished = false;
};

} // namespace farview
