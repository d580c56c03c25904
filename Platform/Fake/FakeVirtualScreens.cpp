#include "Platform/Fake/FakeVirtualScreens.h"

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

/// What a monitor shows of a desktop on which its scale makes everything larger.
template <typename Monitor> PixelRect placed(const Monitor& monitor, const PixelPoint& corner)
{
    return pixelRect(corner.x, corner.y, static_cast<int>(monitor.width / monitor.scale),
                     static_cast<int>(monitor.height / monitor.scale));
}

class FakeVirtualScreen final : public VirtualScreen
{
public:
    explicit FakeVirtualScreen(std::shared_ptr<FakeMonitor> monitor) : mMonitor(std::move(monitor))
    {
    }

    void resize(int width, int height) override
    {
        auto wanted = mMonitor->geometry();
        wanted.width = width;
        wanted.height = height;
        wanted.area = placed(wanted, wanted.corner());
        mMonitor->change(wanted);
    }
    void setScale(double scale) override
    {
        auto wanted = mMonitor->geometry();
        wanted.scale = scale;
        wanted.area = placed(wanted, wanted.corner());
        mMonitor->change(wanted);
    }
    void place(PixelPoint corner) override
    {
        auto wanted = mMonitor->geometry();
        wanted.area = placed(wanted, corner);
        mMonitor->change(wanted);
    }
    ScreenSource& frames() override { return *mMonitor; }
    CursorSource& cursor() override { return *mMonitor; }
    InputSink& input() override { return mMonitor->input(); }
    void setKeepsWindows(bool flag) override { mMonitor->setKeepsWindows(flag); }
    WindowKeeping windowKeeping() const override { return WindowKeeping::byFarview; }

private:
    std::shared_ptr<FakeMonitor> mMonitor;
};

PixelRect whole(const ScreenGeometry& geometry)
{
    return pixelRect(0, 0, geometry.width, geometry.height);
}

} // namespace

struct FakeMonitor::Lease {
    std::vector<std::uint32_t> pixels;
    std::weak_ptr<FakeMonitor> owner;

    ~Lease()
    {
        if (const auto monitor = owner.lock()) {
            const std::lock_guard lock(monitor->mMutex);
            monitor->mIsFrameOut = false;
            monitor->announceFrame();
        }
    }
};

FakeMonitor::FakeMonitor(FakeRunLoop& loop, ScreenWish wish,
                         std::weak_ptr<VirtualScreenDelegate> delegate)
    : mLoop(loop), mWish(std::move(wish)),
      mDelegate(std::move(delegate)), mGeometry{placed(mWish, pixelPoint(1920, 0)),
                                                mWish.width,
                                                mWish.height,
                                                mWish.scale,
                                                60,
                                                {pixelRect(0, 0, 1920, 1080)}}
{
}

void FakeMonitor::tell(std::function<void(VirtualScreenDelegate&)> news)
{
    mLoop.post(weak_from_this(), [this, news = std::move(news)] {
        if (const auto delegate = mDelegate.lock())
            news(*delegate);
    });
}

void FakeMonitor::appear()
{
    tell([geometry = mGeometry](auto& delegate) { delegate.didAppear(geometry); });
    const std::lock_guard lock(mMutex);
    clear();
}

void FakeMonitor::clear()
{
    mPixels.assign(static_cast<std::size_t>(mGeometry.width) * mGeometry.height, 0);
    mDamage = {whole(mGeometry)};
    announceFrame();
}

void FakeMonitor::paint(const PixelRect& part, std::uint32_t colour)
{
    {
        const std::lock_guard lock(mMutex);
        fill(part, colour);
    }
    damage(part);
}

void FakeMonitor::fill(const PixelRect& part, std::uint32_t colour)
{
    for (int y = part.y; y < part.y + part.height; ++y)
        std::fill_n(mPixels.begin() + y * mGeometry.width + part.x, part.width, colour);
}

void FakeMonitor::damage(const PixelRect& part)
{
    const std::lock_guard lock(mMutex);
    mDamage.push_back(part);
    announceFrame();
}

void FakeMonitor::announceFrame()
{
    if (mHasEnded || mDamage.empty() || mIsFrameOut || std::exchange(mIsFrameAnnounced, true))
        return;
    tell([](auto& delegate) { delegate.frameReady(); });
}

std::optional<ScreenFrame> FakeMonitor::takeFrame()
{
    const std::lock_guard lock(mMutex);
    if (mDamage.empty() || mIsFrameOut)
        return std::nullopt;
    mIsFrameOut = true;
    mIsFrameAnnounced = false;
    const auto lease = std::make_shared<Lease>(mPixels, weak_from_this());
    const FrameView view{lease->pixels.data(), mGeometry.width, mGeometry.height, mGeometry.width};
    return ScreenFrame{view, std::exchange(mDamage, {}), lease};
}

void FakeMonitor::setCursor(CursorImage image)
{
    {
        const std::lock_guard lock(mMutex);
        mImage = std::move(image);
    }
    tell([](auto& delegate) { delegate.cursorChanged(); });
}

void FakeMonitor::moveCursor(std::optional<PixelPoint> position)
{
    {
        const std::lock_guard lock(mMutex);
        mPosition = position;
    }
    tell([](auto& delegate) { delegate.cursorChanged(); });
}

std::optional<CursorImage> FakeMonitor::takeImage()
{
    const std::lock_guard lock(mMutex);
    return std::exchange(mImage, std::nullopt);
}

std::optional<PixelPoint> FakeMonitor::position()
{
    const std::lock_guard lock(mMutex);
    return mPosition;
}

void FakeMonitor::change(const ScreenGeometry& geometry)
{
    if (mHasEnded || geometry == mGeometry)
        return;
    tell([geometry](auto& delegate) { delegate.didChange(geometry); });
    const std::lock_guard lock(mMutex);
    const auto before = std::exchange(mGeometry, geometry);
    if (before.width != geometry.width || before.height != geometry.height)
        clear();
}

void FakeMonitor::end(ScreenObstacle reason)
{
    const std::lock_guard lock(mMutex);
    if (!std::exchange(mHasEnded, true))
        tell([reason](auto& delegate) { delegate.didEnd(reason); });
}

void FakeVirtualScreens::availability(std::weak_ptr<void> target, Answer then)
{
    ScreenAvailability found{ScreenWay::gnome};
    if (mObstacle)
        found = {std::nullopt, *mObstacle};
    mLoop.post(std::move(target), [found, then = std::move(then)] { then(found); });
}

std::unique_ptr<VirtualScreen> FakeVirtualScreens::open(const ScreenWish& wish, Delegate delegate)
{
    auto monitor = std::make_shared<FakeMonitor>(mLoop, wish, std::move(delegate));
    mMonitors.push_back(monitor);
    if (mObstacle)
        monitor->end(*mObstacle);
    else
        monitor->appear();
    return std::make_unique<FakeVirtualScreen>(std::move(monitor));
}

std::vector<std::shared_ptr<FakeMonitor>> FakeVirtualScreens::monitors() const
{
    std::vector<std::shared_ptr<FakeMonitor>> open;
    for (const auto& each : mMonitors) {
        if (auto monitor = each.lock())
            open.push_back(std::move(monitor));
    }
    return open;
}

} // namespace farview
