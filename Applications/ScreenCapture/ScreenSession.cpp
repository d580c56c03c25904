#include "Applications/ScreenCapture/ScreenSession.h"

#include "Common/Rules/ScreenTexts.h"

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

constexpr double hundredths = 100;

/// Nothing where the desktop has no other screen.
std::optional<ScreenSide> sideOfMonitor(const ScreenGeometry& geometry)
{
    if (geometry.others.empty())
        return std::nullopt;
    return sideOf(geometry.area, geometry.others.front());
}

ScreenReport::Fingers fingersOf(const InputAbilities& abilities)
{
    if (abilities.touch)
        return ScreenReport::Fingers::several;
    return abilities.touchWithARight ? ScreenReport::Fingers::oneWithoutARight
                                     : ScreenReport::Fingers::one;
}

} // namespace

ScreenSession::ScreenSession(Services services, std::string device, const LinkOptions& told,
                             std::function<void()> changed)
    : mServices(services), mDevice(std::move(device)), mChanged(std::move(changed)),
      mOptions(options()), mTold(told)
{
}

void ScreenSession::deviceScreenIs(const LinkDeviceScreen& screen)
{
    mDeviceScreen = {screen.width, screen.height, screen.scale / hundredths};
    if (mReport.state == ScreenReport::State::none) {
        open();
    } else if (!std::exchange(mWillFollow, true)) {
        const Duration pause = mFollowedAt + settling - mServices.runLoop.now();
        mServices.runLoop.performAfterDelay(std::max(pause, Duration::zero()), weak_from_this(),
                                            [this] {
                                                mWillFollow = false;
                                                mFollowedAt = mServices.runLoop.now();
                                                follow();
                                            });
    }
}

void ScreenSession::preferencesChanged(const LinkOptions& told)
{
    mTold = told;
    followRights();
    const Options now = options();
    if (std::exchange(mOptions, now) != now) {
        // The user's latest word on size and scale.
        remember({.side = remembered().side});
    }
    follow();
}

ScreenSession::Options ScreenSession::options()
{
    return {mServices.preferences.areRetinaResolutionsEnabled(),
            mServices.preferences.enableHiDPIResolutions()};
}

RememberedScreen ScreenSession::remembered()
{
    return rememberedScreen(mServices.preferences.deviceScreen(mDevice));
}

void ScreenSession::remember(const RememberedScreen& screen)
{
    mServices.preferences.setDeviceScreen(mDevice, storedScreen(screen));
}

// --- the monitor -----------------------------------------------------------------------------

void ScreenSession::open()
{
    const RememberedScreen known = remembered();
    mMeasure = measureFor(*mDeviceScreen, mOptions.fullResolution, mOptions.hiDPI, known);
    mSide = known.side;
    mScreen = mServices.screens.open({mDevice, mMeasure.width, mMeasure.height, mMeasure.scale,
                                      mServices.link.hasFeature(kLinkInputFeature),
                                      mTold.windowsMoveBack},
                                     weak_from_this());
    if (!mScreen)
        didEnd(ScreenObstacle::noDesktop);
    else if (mReport.state == ScreenReport::State::none)
        tell({.state = ScreenReport::State::coming});
}

void ScreenSession::follow()
{
    if (!mScreen)
        return;
    const RememberedScreen known = remembered();
    followMeasure(measureFor(*mDeviceScreen, mOptions.fullResolution, mOptions.hiDPI, known));
    followSide(known.side);
}

void ScreenSession::followMeasure(const ScreenMeasure& measure)
{
    const ScreenMeasure before = std::exchange(mMeasure, measure);
    if (before.width != measure.width || before.height != measure.height)
        mScreen->resize(measure.width, measure.height);
    if (before.scale != measure.scale)
        mScreen->setScale(measure.scale);
}

void ScreenSession::followSide(std::optional<ScreenSide> side)
{
    if (std::exchange(mSide, side) == side || !side || mGeometry.others.empty())
        return;
    const PixelRect& area = mGeometry.area;
    mScreen->place(cornerBeside(*side, area.width, area.height, mGeometry.others));
}

void ScreenSession::didAppear(const ScreenGeometry& geometry)
{
    mServices.log.write(LogLevel::info, "The monitor of " + mDevice + " has " +
                                            std::to_string(geometry.width) + " x " +
                                            std::to_string(geometry.height) + " pixels");
    mGeometry = geometry;
    // It appeared where the desktop puts a new one.
    followSide(std::exchange(mSide, std::nullopt));
    beginInput();
    beginPicture();
    tell(reportOf(geometry));
}

void ScreenSession::didChange(const ScreenGeometry& geometry)
{
    const ScreenGeometry before = std::exchange(mGeometry, geometry);
    if (mInput)
        mInput->setMonitor({geometry.area, geometry.width, geometry.height});
    rememberShape(before, geometry);
    tell(reportOf(geometry));
}

/// What was not asked for here, the user did with the desktop's own means.
void ScreenSession::rememberShape(const ScreenGeometry& before, const ScreenGeometry& now)
{
    const bool isResized = (now.width != before.width || now.height != before.height) &&
                           (now.width != mMeasure.width || now.height != mMeasure.height);
    const bool isScaled = now.scale != before.scale && now.scale != mMeasure.scale;
    if (isResized || isScaled) {
        mMeasure = {now.width, now.height, now.scale};
        remember({remembered().side, now.width, now.height, now.scale, *mDeviceScreen});
    }
    const auto side = sideOfMonitor(now);
    if (now.corner() != before.corner() && side &&
        side != (mSide ? mSide : sideOfMonitor(before))) {
        mSide = side;
        RememberedScreen moved = remembered();
        moved.side = side;
        remember(moved);
    }
}

void ScreenSession::didEnd(ScreenObstacle reason)
{
    if (close())
        tellPictureIsOver();
    mServices.log.write(LogLevel::warning, "There is no monitor for " + mDevice + ": " +
                                               obstacleTexts(reason).trouble);
    tell({.state = ScreenReport::State::missing, .obstacle = reason});
    if (reason == ScreenObstacle::locked)
        mServices.runLoop.performAfterDelay(lockedPause, weak_from_this(), [this] { open(); });
}

/// Whether there was a picture.
bool ScreenSession::close()
{
    const bool hadPicture = mPicture != nullptr;
    if (hadPicture)
        mLastFrame = mPicture->lastFrame();
    mInput.reset();
    mPicture.reset();
    mScreen.reset();
    return hadPicture;
}

/// What was made of the picture before is on its way to the link already.
void ScreenSession::tellPictureIsOver()
{
    mServices.runLoop.post(weak_from_this(), [this] { mServices.link.send(LinkPictureSize{}); });
}

// --- what the device's user does -------------------------------------------------------------

void ScreenSession::beginInput()
{
    if (mServices.link.hasFeature(kLinkInputFeature))
        mInput = std::make_unique<InputReceiver>(
            mScreen->input(), [&loop = mServices.runLoop] { return loop.now(); });
    if (mInput)
        mInput->setMonitor({mGeometry.area, mGeometry.width, mGeometry.height});
    followRights();
}

void ScreenSession::followRights()
{
    if (mScreen)
        mScreen->setKeepsWindows(mTold.windowsMoveBack);
    if (mInput)
        mInput->setRights({mTold.touch, mTold.typing});
    if (mReport.state == ScreenReport::State::shown)
        tell(reportOf(mGeometry));
}

void ScreenSession::deviceDid(const LinkFrame& input)
{
    if (mInput && mInput->take(input))
        typed();
}

void ScreenSession::typed()
{
    mTypedAt = mServices.runLoop.now();
    if (std::exchange(mIsTyping, true))
        return;
    typingElapsed();
    tell(reportOf(mGeometry));
}

/// Looks again when the pause after the last key would be over.
void ScreenSession::typingElapsed()
{
    const Duration left = mTypedAt + typingPause - mServices.runLoop.now();
    mIsTyping = left > Duration::zero() && mInput;
    if (mIsTyping)
        mServices.runLoop.performAfterDelay(left, weak_from_this(), [this] { typingElapsed(); });
    else if (mReport.state == ScreenReport::State::shown)
        tell(reportOf(mGeometry));
}

ScreenReport ScreenSession::reportOf(const ScreenGeometry& geometry) const
{
    return {.state = ScreenReport::State::shown,
            .width = geometry.width,
            .height = geometry.height,
            .scale = geometry.scale,
            .rate = geometry.rate,
            .windows = mScreen->windowKeeping(),
            .fingers = mInput && mTold.touch ? fingersOf(mScreen->input().abilities())
                                             : ScreenReport::Fingers::several,
            .isTyping = mIsTyping,
            .monitor = geometry.area,
            .screens = geometry.others};
}

// --- the picture -----------------------------------------------------------------------------

void ScreenSession::beginPicture()
{
    const auto self = weak_from_this();
    RunLoop& loop = mServices.runLoop;
    const auto send = [self, &loop, this](PictureThread::Frames made) {
        const auto frames = std::make_shared<PictureThread::Frames>(std::move(made));
        loop.post(self, [this, frames] { this->send(std::move(*frames)); });
    };
    const auto failed = [self, &loop, this] { loop.post(self, [this] { pictureFailed(); }); };
    mPicture = std::make_unique<PictureThread>(mScreen->frames(), mScreen->cursor(),
                                               mServices.link.hasFeature(kLinkZstdFeature),
                                               mLastFrame, PictureThread::Outlet{send, failed});
}

void ScreenSession::send(PictureThread::Frames frames)
{
    for (LinkFrame& frame : frames) {
        mServices.packetLog.write(frame);
        mServices.link.send(frame);
    }
    linkHasRoom();
}

void ScreenSession::linkHasRoom()
{
    if (mPicture)
        mPicture->setHasRoom(mServices.link.hasRoom());
}

void ScreenSession::pictureFailed()
{
    if (mScreen)
        didEnd(ScreenObstacle::failed);
}

bool ScreenSession::deviceShowed(const LinkShown& shown)
{
    // What was sent of an earlier picture may be shown late.
    return shown.number <= mLastFrame || (mPicture && mPicture->shown(shown.number));
}

void ScreenSession::frameReady()
{
    if (mPicture)
        mPicture->frameReady();
}

void ScreenSession::cursorChanged()
{
    if (mPicture)
        mPicture->cursorChanged();
}

void ScreenSession::tell(const ScreenReport& report)
{
    if (std::exchange(mReport, report) != report)
        mChanged();
}

} // namespace farview
