#include "Platform/Desktop/Screens/Portal/PortalMonitor.h"

#include <cmath>
#include <utility>

namespace farview
{

PortalMonitor::PortalMonitor(RunLoop& loop, SessionBus& bus, PortalMemory memory,
                             const ScreenWish& wish, VirtualScreens::Delegate delegate)
    : mLoop(loop), mDelegate(std::move(delegate)), mWish(wish),
      mSession(bus, std::move(memory),
               {[this] { awaitUser(); }, [this](auto stream) { connect(std::move(stream)); },
                [this](auto reason) { end(reason); }}),
      mStream(loop, {.frameReady = [this] { tell([](auto& told) { told.frameReady(); }); },
                     .cursorChanged = [this] { tell([](auto& told) { told.cursorChanged(); }); },
                     .ended = [this](auto reason) { end(reason); },
                     .sized = [this](int width, int height) { report(width, height); },
                     .wantsPause = [this] { mInput.hold([this] { mStream.pause(); }); },
                     .resumed = [this] { mSession.settle([this] { mInput.goOn(); }); }})
{
    if (PipeWireStream::isPossible(wish.width, wish.height))
        mSession.begin(wish.name, wish.input);
    else
        end(ScreenObstacle::tooLarge);
}

CursorSource& PortalMonitor::cursor()
{
    return mPlan.isPointerApart ? static_cast<CursorSource&>(mStream.screen()) : mCursorInFrames;
}

/// Who has allowed it before is not asked again.
void PortalMonitor::awaitUser()
{
    mLoop.performAfterDelay(longestUnasked, mLife, [this] {
        if (!mIsConnected)
            tell([](auto& told) { told.userIsAsked(); });
    });
}

void PortalMonitor::connect(PortalStream stream)
{
    mIsConnected = true;
    mPlan = stream.plan;
    mArea = stream.area;
    mStream.connect(std::move(stream.source), mWish.width, mWish.height);
}

void PortalMonitor::resize(int width, int height)
{
    if (mPlan.isMirror || !PipeWireStream::isPossible(width, height))
        return;
    mWish.width = width;
    mWish.height = height;
    mStream.resize(width, height);
}

void PortalMonitor::report(int width, int height)
{
    const bool isFirst = mScale == 0;
    const auto now = geometry(width, height);
    mWish.width = width;
    mWish.height = height;
    mInput.setMonitor(now);
    tell([now, isFirst](auto& told) { isFirst ? told.didAppear(now) : told.didChange(now); });
    mStream.show(width, height, false);
}

/// The portal tells the place once, and the scale by it.
ScreenGeometry PortalMonitor::geometry(int width, int height)
{
    const auto area = mArea.value_or(pixelRect(0, 0, width, height));
    if (mScale == 0)
        mScale = double(width) / area.width;
    const auto points = [this](int pixels) { return int(std::lround(pixels / mScale)); };
    return {.area = pixelRect(area.x, area.y, points(width), points(height)),
            .width = width,
            .height = height,
            .scale = mScale,
            .isMirror = mPlan.isMirror};
}

void PortalMonitor::tell(std::function<void(VirtualScreenDelegate&)> news)
{
    if (!mHasEnded)
        mLoop.post(mLife, [delegate = mDelegate, news = std::move(news)] {
            if (const auto told = delegate.lock())
                news(*told);
        });
}

void PortalMonitor::end(ScreenObstacle reason)
{
    tell([reason](auto& told) { told.didEnd(reason); });
    mHasEnded = true;
    remove();
}

void PortalMonitor::remove()
{
    mInput.end();
    mSession.stop();
}

} // namespace farview
