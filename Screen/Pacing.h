#pragma once

#include "Screen/PixelCodec.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>

namespace farview
{

/// Time on a clock that only goes forward.
using PictureTime = std::chrono::microseconds;

/// How JPEG's quality follows the time that a large frame takes from being sent to being shown:
/// quickly down, slowly up.
int qualityAfter(int quality, PictureTime took);

/// Whether another frame may be sent: the newest picture, never a queue. `unshown` are the frames
/// that the device has not shown yet; without room what was sent still waits in this computer.
bool mayBeginFrame(std::size_t unshown, bool hasRoom);

/// Whether a change is so small (typing, a pointer) that it need not wait for the next beat.
bool isSmallChange(int changedTiles);

/// How many tiles are sent once more without loss in one frame: few where the link is slow, so that
/// changes need not wait for them.
int refinedAtOnce(int quality);

/// When frames leave, and how good they are, by what the device says it has shown. One thread.
class Pacing
{
public:
    /// A beat: frames with large changes are begun to be made this long after one another. It is
    /// shorter than that of the desktops, 60 a second, so that no frame waits for two of them.
    static constexpr PictureTime frameTime = std::chrono::microseconds(12'000);

    /// `lastFrame` is the number of the last frame before.
    explicit Pacing(std::uint32_t lastFrame = 0) : mLast(lastFrame) {}

    /// Whether a frame may leave now that changes this many tiles.
    bool mayBegin(PictureTime now, int changedTiles, bool hasRoom) const;
    /// A frame is begun to be made now, and leaves when it is done. The quality that it gets.
    int beat(PictureTime now);
    /// The number of the frame that leaves now.
    std::uint32_t begin(PictureTime now, std::size_t bytes);
    /// The device has shown that frame, and so all before it. False, and nothing happens, when no
    /// such frame is on its way: the device broke a rule.
    bool shown(std::uint32_t frame, PictureTime now);

    /// When a large change may leave, by the beat alone.
    PictureTime nextBeat() const { return mLastBeat + frameTime; }
    int quality() const { return mQuality; }
    std::uint32_t lastFrame() const { return mLast; }
    std::size_t unshown() const { return mOnTheirWay.size(); }

private:
    struct Frame {
        std::uint32_t number;
        PictureTime began;
        std::size_t bytes;
    };

    void follow(const Frame& frame, PictureTime now);

    std::deque<Frame> mOnTheirWay;
    std::uint32_t mLast;
    PictureTime mLastBeat = -frameTime;
    int mQuality = kBestPictureQuality;
};

} // namespace farview
