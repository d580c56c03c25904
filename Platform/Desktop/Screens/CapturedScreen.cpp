#include "Platform/Desktop/Screens/CapturedScreen.h"

#include <algorithm>
#include <array>
#include <utility>

namespace farview
{
namespace
{

/// Parts that nobody takes add up; beyond this the frame counts as changed everywhere.
constexpr std::size_t mostDamage = 256;

/// The highest byte of a pixel is whatever its painter left there; frames have 0.
constexpr std::uint32_t colours = 0x00FFFFFF;

/// As many pixels as are worked on at once: the compiler makes a few instructions of them.
constexpr int blockSize = 16;

template <int count> std::uint32_t copyPixels(const std::uint32_t* from, std::uint32_t* to)
{
    std::array<std::uint32_t, count> pixels;
    std::uint32_t difference = 0;
    for (int index = 0; index < count; ++index)
        pixels[index] = from[index] & colours;
    for (int index = 0; index < count; ++index)
        difference |= pixels[index] ^ to[index];
    std::copy(pixels.begin(), pixels.end(), to);
    return difference;
}

/// Whether that made a difference.
bool copyRow(const std::uint32_t* from, std::uint32_t* to, int width)
{
    std::uint32_t difference = 0;
    int x = 0;
    for (; x + blockSize <= width; x += blockSize)
        difference |= copyPixels<blockSize>(from + x, to + x);
    for (; x < width; ++x)
        difference |= copyPixels<1>(from + x, to + x);
    return difference != 0;
}

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

CapturedScreen::CapturedScreen(std::function<void()> released, bool isPointerInFrames)
    : mReleased(std::move(released)), mIsPointerInFrames(isPointerInFrames)
{
}

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

std::vector<PixelRect> copyChangedRows(const FrameView& from, std::uint32_t* to)
{
    std::vector<PixelRect> bands;
    for (int y = 0; y < from.height; ++y, to += from.width) {
        if (!copyRow(from.row(y), to, from.width))
            continue;
        if (bands.empty() || bands.back().y + bands.back().height != y)
            bands.push_back(pixelRect(0, y, from.width, 0));
        ++bands.back().height;
    }
    return bands;
}

} // namespace farview
