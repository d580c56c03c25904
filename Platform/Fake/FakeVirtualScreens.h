#pragma once

#include "Platform/Fake/FakeInputSink.h"
#include "Platform/Fake/FakeRunLoop.h"
#include "Platform/VirtualScreens.h"

#include <functional>
#include <mutex>
#include <vector>

namespace farview
{

/// A monitor that shows what a test paints on it, beside a screen of 1920x1080. Its frames and its
/// pointer may be asked for on any thread, everything else is for the test's own.
class FakeMonitor final : public ScreenSource,
                          public CursorSource,
                          public std::enable_shared_from_this<FakeMonitor>
{
public:
    FakeMonitor(FakeRunLoop& loop, ScreenWish wish, std::weak_ptr<VirtualScreenDelegate> delegate);

    /// Fills a part of the monitor.
    void paint(const PixelRect& part, std::uint32_t colour);
    /// Damage where nothing has changed.
    void damage(const PixelRect& part);
    void setCursor(CursorImage image);
    void moveCursor(std::optional<PixelPoint> position);
    /// What the desktop makes of it: on its own, or because it was asked to.
    void change(const ScreenGeometry& geometry);
    void end(ScreenObstacle reason);

    const ScreenWish& wish() const { return mWish; }
    const ScreenGeometry& geometry() const { return mGeometry; }
    /// What the user of the device did on the monitor.
    FakeInputSink& input() { return mInput; }
    bool keepsWindows() const { return mWish.keepsWindows; }
    void setKeepsWindows(bool flag) { mWish.keepsWindows = flag; }

    std::optional<ScreenFrame> takeFrame() override;
    bool isInFrames() const override { return false; }
    std::optional<CursorImage> takeImage() override;
    std::optional<PixelPoint> position() override;

private:
    friend class FakeVirtualScreens;
    struct Lease;

    void appear();
    void tell(std::function<void(VirtualScreenDelegate&)> news);
    void clear();
    void fill(const PixelRect& part, std::uint32_t colour);
    void announceFrame();

    FakeRunLoop& mLoop;
    ScreenWish mWish;
    std::weak_ptr<VirtualScreenDelegate> mDelegate;
    ScreenGeometry mGeometry;
    std::vector<std::uint32_t> mPixels;
    std::vector<PixelRect> mDamage;
    std::optional<CursorImage> mImage;
    std::optional<PixelPoint> mPosition;
    std::mutex mMutex; ///< of what the sources give
    bool mIsFrameOut = false;
    bool mIsFrameAnnounced = false;
    bool mHasEnded = false;
    FakeInputSink mInput;
};

/// A desktop on which tests script what becomes of a monitor: it appears on the next turn unless
/// something is in its way.
class FakeVirtualScreens final : public VirtualScreens
{
public:
    explicit FakeVirtualScreens(FakeRunLoop& loop) : mLoop(loop) {}

    void availability(std::weak_ptr<void> target, Answer then) override;
    std::unique_ptr<VirtualScreen> open(const ScreenWish& wish, Delegate delegate) override;

    /// From now on; nothing: monitors can be made.
    void setObstacle(std::optional<ScreenObstacle> obstacle) { mObstacle = obstacle; }
    /// The monitors that are open, in the order in which they were opened.
    std::vector<std::shared_ptr<FakeMonitor>> monitors() const;

private:
    FakeRunLoop& mLoop;
    std::optional<ScreenObstacle> mObstacle;
    std::vector<std::weak_ptr<FakeMonitor>> mMonitors;
};

} // namespace farview
