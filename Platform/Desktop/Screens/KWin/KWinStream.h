#pragma once

#include "Platform/Desktop/Screens/PipeWireStream.h"

#include <functional>
#include <memory>
#include <string>

struct zkde_screencast_stream_unstable_v1;
struct zkde_screencast_unstable_v1;

namespace farview
{

/// An output that KWin makes for us, in a size that stays, and its pixels. The destructor removes
/// it; KWin does when the connection ends. Main thread only.
class KWinStream
{
public:
    /// What KWin is asked for.
    struct Wish {
        std::string name; ///< KWin puts "Virtual-" before it
        int width = 0;    ///< in pixels
        int height = 0;
    };

    /// `begun` is called when KWin shows it. `events` are those of its pixels, and tell of its end,
    /// too. None of them may destroy it.
    KWinStream(RunLoop& loop, zkde_screencast_unstable_v1& maker, Wish wish,
               std::function<void()> begun, PipeWireStream::Events events);

    const Wish& wish() const { return mWish; }
    /// Whether KWin has begun to show it.
    bool hasBegun() const { return mHasBegun; }
    CapturedScreen& screen() { return mPixels.screen(); }

private:
    struct Close {
        void operator()(zkde_screencast_stream_unstable_v1* stream) const;
    };

    void begin(std::uint32_t node);

    Wish mWish;
    std::function<void()> mBegun;
    std::function<void(ScreenObstacle)> mEnded;
    bool mHasBegun = false;
    std::unique_ptr<zkde_screencast_stream_unstable_v1, Close> mStream;
    PipeWireStream mPixels; ///< ends first
};

} // namespace farview
