#pragma once

#include "Platform/CursorSource.h"
#include "Platform/ScreenSource.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace farview
{

/// The newest frame and pointer of a monitor, between the thread that captures and the one that
/// takes. There is one buffer: while a frame is out, nothing is captured, and what changes adds up
/// at its source. Operations may be called on any thread.
class CapturedScreen final : public ScreenSource,
                             public CursorSource,
                             public std::enable_shared_from_this<CapturedScreen>
{
public:
    /// `released` is called, on the thread of whoever took it, when a frame has come back.
    explicit CapturedScreen(std::function<void()> released, bool isPointerInFrames = false);

    // The capturing thread's side.

    /// From now on frames are captured there; whoever has an older one keeps its memory.
    void setBuffer(FrameView view, std::shared_ptr<void> memory);
    /// The buffer is about to be written. False while a frame is out: not now.
    bool beginFrame();
    /// It is written, and differs in these parts. True when the taker is to be told.
    bool endFrame(std::vector<PixelRect> damage);
    void setCursor(CursorImage image);
    /// True when that is news.
    bool moveCursor(std::optional<PixelPoint> position);

    // The taker's side.

    std::optional<ScreenFrame> takeFrame() override;
    bool isInFrames() const override { return mIsPointerInFrames; }
    std::optional<CursorImage> takeImage() override;
    std::optional<PixelPoint> position() override;

private:
    struct Lease;

    void release();

    std::mutex mMutex;
    std::function<void()> mReleased;
    bool mIsPointerInFrames;
    FrameView mView;
    std::shared_ptr<void> mMemory;
    std::vector<PixelRect> mDamage;
    bool mIsWriting = false;
    bool mIsOut = false;
    bool mIsAnnounced = false;
    std::optional<CursorImage> mImage;
    std::optional<PixelPoint> mPosition;
};

/// Copies a frame to `to`, which has its size and no gap between rows, with a highest byte of 0.
/// Returns where that made a difference, in whole rows, from above.
std::vector<PixelRect> copyChangedRows(const FrameView& from, std::uint32_t* to);

} // namespace farview
