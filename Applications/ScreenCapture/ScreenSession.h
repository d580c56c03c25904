#pragma once

#include "Applications/ScreenCapture/DeviceLink.h"
#include "Applications/ScreenCapture/InputReceiver.h"
#include "Applications/ScreenCapture/PictureThread.h"
#include "Common/FVEPreferences.h"
#include "Common/PacketLog.h"
#include "Common/Rules/DeviceScreen.h"
#include "Common/Rules/ScreenReport.h"
#include "Platform/Log.h"
#include "Platform/RunLoop.h"
#include "Platform/VirtualScreens.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace farview
{

/// The monitor of a device that is connected, its picture, and what its user does there: makes it
/// when the device has told its screen, follows the user's options, remembers what the user makes
/// of it with the desktop's own means, and removes it at the session's end. A monitor that the
/// desktop took away because it is locked comes back. Made with `std::make_shared`. Main thread
/// only.
class ScreenSession final : public VirtualScreenDelegate,
                            public std::enable_shared_from_this<ScreenSession>
{
public:
    /// What it works with; all of it outlives the session.
    struct Services {
        VirtualScreens& screens;
        RunLoop& runLoop;
        FVEPreferences& preferences;
        DeviceLink& link;
        PacketLog& packetLog;
        Log& log;
    };

    /// A device whose screen changes all the time is followed that often, any other at once.
    static constexpr Duration settling{0.3};
    /// So long after the last key the device's user is said to be typing.
    static constexpr Duration typingPause{3.0};
    /// How often a locked desktop is asked.
    static constexpr Duration lockedPause{2.0};

    /// `device`: under which name its screen is remembered; `told`: the options that it was told.
    /// `changed` is called after each change of the report, never inside a call but
    /// `deviceScreenIs`, `deviceDid` and `preferencesChanged`.
    ScreenSession(Services services, std::string device, const LinkOptions& told,
                  std::function<void()> changed);

    /// The device's own screen is that, from now on.
    void deviceScreenIs(const LinkDeviceScreen& screen);
    /// The device has shown a frame. False when it was never sent one of that number.
    bool deviceShowed(const LinkShown& shown);
    /// Its user did something with the picture.
    void deviceDid(const LinkFrame& input);
    void linkHasRoom();
    /// `told`: the options that the device was told last.
    void preferencesChanged(const LinkOptions& told);

    const ScreenReport& report() const { return mReport; }

    void userIsAsked() override { tell({.state = ScreenReport::State::asking}); }
    void didAppear(const ScreenGeometry& geometry) override;
    void didChange(const ScreenGeometry& geometry) override;
    void frameReady() override;
    void cursorChanged() override;
    void didEnd(ScreenObstacle reason) override;

private:
    /// The user's options that change what a monitor is.
    struct Options {
        bool fullResolution = false;
        bool hiDPI = false;

        bool operator==(const Options&) const = default;
    };

    Options options();
    RememberedScreen remembered();
    void remember(const RememberedScreen& screen);
    void open();
    void follow();
    void followMeasure(const ScreenMeasure& measure);
    void followSide(std::optional<ScreenSide> side);
    void rememberShape(const ScreenGeometry& before, const ScreenGeometry& now);
    void beginInput();
    void followRights();
    void typed();
    void typingElapsed();
    ScreenReport reportOf(const ScreenGeometry& geometry) const;
    void beginPicture();
    void send(PictureThread::Frames frames);
    void pictureFailed();
    bool close();
    void tellPictureIsOver();
    void tell(const ScreenReport& report);

    Services mServices;
    std::string mDevice;
    std::function<void()> mChanged;
    std::optional<DeviceScreen> mDeviceScreen;
    Options mOptions;
    ScreenMeasure mMeasure; ///< that was asked for
    std::optional<ScreenSide> mSide;
    ScreenGeometry mGeometry;
    ScreenReport mReport;
    bool mWillFollow = false;
    Duration mFollowedAt = -settling;
    LinkOptions mTold;
    Duration mTypedAt{0};
    bool mIsTyping = false;
    std::uint32_t mLastFrame = 0; ///< of the pictures before this one
    // Picture and input are the monitor's, and end before it.
    std::unique_ptr<VirtualScreen> mScreen;
    std::unique_ptr<PictureThread> mPicture;
    std::unique_ptr<InputReceiver> mInput;
};

} // namespace farview
