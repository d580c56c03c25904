#pragma once

#include "Applications/ScreenCapture/DeviceLink.h"
#include "Applications/ScreenCapture/DeviceTarget.h"
#include "Applications/ScreenCapture/PairingDesk.h"
#include "Applications/ScreenCapture/ScreenSession.h"
#include "Common/FVEPreferences.h"
#include "Common/PacketLog.h"
#include "Platform/Clock.h"
#include "Platform/Log.h"
#include "Platform/RunLoop.h"
#include "Platform/VirtualScreens.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace farview
{

/// One device: the road to it, whether it is the one that the user means, what it is told of the
/// options, and its screen. A device is its key: one that the user asks for and that is not known
/// is compared with first, any other is left. Made with `std::make_shared`. Main thread only.
class DeviceConnection final : public DeviceLinkDelegate,
                               public std::enable_shared_from_this<DeviceConnection>
{
public:
    /// What it works with; all of it outlives the connection.
    struct Services {
        RunLoop& runLoop;
        FVEPreferences& preferences;
        VirtualScreens& screens;
        PacketLog& packetLog;
        Log& log;
        Clock& clock;
        PairingDesk& desk;
    };
    /// What becomes of it. What its owner ended is not told.
    struct Events {
        std::function<void()> opened;
        std::function<void(const std::string& why)> failed;
        std::function<void(const LinkEnd& end)> ended;
        std::function<void()> screenChanged;
    };

    DeviceConnection(Services services, std::shared_ptr<DeviceLink> link);

    /// Called once, before everything else, and again when it gets another owner.
    void setEvents(Events events);

    /// What it is about from now on. One that is `isAutomatic` was asked for by nobody: no question
    /// is asked for its sake.
    void aim(const DeviceTarget& target, bool isAutomatic);
    /// The user asks for what was automatic.
    void takeOver() { mIsAutomatic = false; }
    void begin();
    /// Ends whatever is under way, with a goodbye.
    void leave();
    /// The same for good; `then` is called within a second, when everything is said.
    void quit(std::function<void()> then);

    bool isIdle() const { return mState == State::idle; }
    bool isConnecting() const { return mState == State::connecting; }
    bool isConnected() const { return mState == State::connected; }
    bool isAutomatic() const { return mIsAutomatic; }
    /// Its host name, or "Other".
    const std::string& deviceName() const { return mTarget.deviceName; }
    /// As the user knows it; empty for one that was asked for by its address.
    const std::string& serviceName() const { return mTarget.serviceName; }
    /// As typed for "Other", else as it was reached.
    std::string address() const;
    /// The host name or the address: what it is asked for by.
    std::string request() const;
    /// While connected.
    const ConnectedDevice& device() const { return mDevice; }
    ScreenReport screen() const;

    /// Whether the user was asked about this one, and nothing came of it yet.
    bool isPairing() const { return mIsPairing; }
    /// The user sees the digits that are in question.
    void confirm();
    /// One that the user knows no longer is to be left.
    bool isStillKnown() const;
    /// Options, rights or packet log may have changed.
    void preferencesChanged();

    LinkTrust deviceDidProveKey(const std::string& key) override;
    std::optional<LinkGoodbye> mayNotAskUser() override;
    void deviceShowsDigits(const std::string& digits) override;
    void deviceDidConnect(const ConnectedDevice& device) override;
    void deviceDidNotConnect(const LinkEnd& end) override;
    void deviceDidSend(const LinkFrame& frame) override;
    void deviceHasRoom() override;
    void deviceDidDisconnect(const LinkEnd& end) override;

private:
    enum class State { idle, connecting, connected };

    void tell(PairingReport::State state, const std::string& digits = {});
    void pairingEnded();
    void keep(const ConnectedDevice& device);
    LinkOptions options();
    void sendOptions();
    void take(const LinkDeviceScreen& screen);
    void endScreen();

    Services mServices;
    std::shared_ptr<DeviceLink> mLink;
    Events mEvents;
    State mState = State::idle;
    DeviceTarget mTarget;
    bool mIsAutomatic = false;
    bool mIsPairing = false;
    ConnectedDevice mDevice;
    LinkOptions mSentOptions;
    std::shared_ptr<ScreenSession> mScreen;
};

} // namespace farview
