#pragma once

#include "Platform/Desktop/Screens/CapturedScreen.h"
#include "Platform/Desktop/Screens/Wayland/WaylandConnection.h"
#include "Platform/RunLoop.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

struct wl_buffer;
struct wl_output;
struct wl_shm;
struct zwlr_screencopy_frame_v1;
struct zwlr_screencopy_frame_v1_listener;
struct zwlr_screencopy_manager_v1;

namespace farview
{

/// How a compositor writes a frame into memory.
struct CopiedFrame {
    std::uint32_t format = 0; ///< of wl_shm
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t stride = 0; ///< in bytes

    std::size_t size() const { return std::size_t{stride} * height; }
    bool operator==(const CopiedFrame&) const = default;
};

/// Whether these are pixels that we understand, in a size that a monitor may have.
bool isUsable(const CopiedFrame& frame);
/// Whether the format has red where others have blue.
bool isRedLowest(const CopiedFrame& frame);

/// The pixels of one output, which the compositor writes into memory of ours whenever they have
/// changed. The pointer is in them. Main thread only; the loop must live longer.
class ScreenCopy
{
public:
    /// Called on a later turn.
    struct Events {
        std::function<void()> frameReady; ///< not again until a frame was taken and released
        std::function<void()> failed;     ///< for good
    };

    ScreenCopy(RunLoop& loop, Events events);
    ~ScreenCopy();
    ScreenCopy(const ScreenCopy&) = delete;
    ScreenCopy& operator=(const ScreenCopy&) = delete;

    /// Whether the compositor has what it takes.
    static bool isPossible(const WaylandConnection& connection);
    /// Begins; once. `stop` before the connection or the output goes.
    void start(WaylandConnection& connection, wl_output* output);
    void stop();
    /// The output has another size: what was not taken yet does not show it any more.
    void restart();

    CapturedScreen& screen() { return *mScreen; }

private:
    static const zwlr_screencopy_frame_v1_listener& frameEvents();
    void request();
    void endRequest();
    void beginCopy();
    bool makeBuffer(const CopiedFrame& frame);
    void dropBuffer();
    void noteDamage(std::uint32_t y, std::uint32_t height);
    void finish();
    void retry();
    void publish();
    FrameView changedRows();

    RunLoop& mLoop;
    Events mEvents;
    std::shared_ptr<CapturedScreen> mScreen;
    zwlr_screencopy_manager_v1* mManager = nullptr;
    wl_shm* mShm = nullptr;
    wl_output* mOutput = nullptr;
    zwlr_screencopy_frame_v1* mFrame = nullptr;
    std::optional<CopiedFrame> mOffered;
    CopiedFrame mCopied;
    wl_buffer* mBuffer = nullptr;
    std::shared_ptr<std::uint32_t> mMemory; ///< the compositor's copy
    std::shared_ptr<std::vector<std::uint32_t>> mPixels;
    bool mIsUpsideDown = false;
    bool mIsWhole = false;    ///< everything counts as changed
    std::uint32_t mFirst = 0; ///< of the rows that have changed
    std::uint32_t mEnd = 0;
    bool mHasNews = false; ///< that were not published
    int mFailures = 0;     ///< one after the other
    std::shared_ptr<void> mLife = std::make_shared<int>();
};

} // namespace farview
