#include "Platform/Desktop/Screens/CapturedScreen.h"

#include <utility>

namespace farview
{
namespace
{

/// Parts that nobody takes add up; beyond this the frame counts as changed everywhere.
constexpr std::size_t mostDamage = 256;

} // namespace

struct CapturedScreen::Lease {
    std::shared_ptr<CapturedScreen> screen;
    std::shared_ptr<void> memory;

    Lease(std::shared_ptr<CapturedScreen> screen, std::shared_ptr<void> memory)
        : screen(std::move(screen)), memory(std::move(memory))
    {
    }
    ~Lease() { screen->release(); }
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;
};

CapturedScreen::CapturedScreen(std::function<void()> released) : mReleased(std::move(released)) {}

void CapturedScreen::setBuffer(FrameView view, std::shared_ptr<void> memory)
{
    const std::lock_guard lock(mMutex);
    mView = view;
    mMemory = std::move(memory);
    mDamage.clear();
}

bool CapturedScreen::beginFrame()
{
    const std::lock_guard lock(mMutex);
    mIsWriting = !mIsOut;
    return mIsWriting;
}

bool CapturedScreen::endFrame(std::vector<PixelRect> damage)
{
    const std::lock_guard lock(mMutex);
    mIsWriting = false;
    mDamage.insert(mDamage.end(), damage.begin(), damage.end());
    if (mDamage.size() > mostDamage)
        mDamage = {pixelRect(0, 0, mView.width, mView.height)};
    return !mDamage.empty() && !std::exchange(mIsAnnounced, true);
}

void CapturedScreen::setCursor(CursorImage image)
{
    const std::lock_guard lock(mMutex);
    mImage = std::move(image);
}

bool CapturedScreen::moveCursor(std::optional<PixelPoint> position)
{
    const std::lock_guard lock(mMutex);
    return std::exchange(mPosition, position) != position;
}

std::optional<ScreenFrame> CapturedScreen::takeFrame()
{
    const std::lock_guard lock(mMutex);
    if (mIsOut)
        return std::nullopt;
    // Whoever comes while it is written is told again when it is done.
    mIsAnnounced = false;
    if (mIsWriting || mDamage.empty())
        return std::nullopt;
    mIsOut = true;
    return ScreenFrame{mView, std::exchange(mDamage, {}),
                       std::make_shared<Lease>(shared_from_this(), mMemory)};
}

void CapturedScreen::release()
{
    {
        const std::lock_guard lock(mMutex);
        mIsOut = false;
    }
    mReleased();
}

std::optional<CursorImage> CapturedScreen::takeImage()
{
    const std::lock_guard lock(mMutex);
    return std::exchange(mImage, std::nullopt);
}

std::optional<PixelPoint> CapturedScreen::position()
{
    const std::lock_guard lock(mMutex);
    return mPosition;
}

} // namespace farview
