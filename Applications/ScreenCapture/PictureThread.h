#pragma once

#include "Link/Wire/LinkFrame.h"
#include "Platform/CursorSource.h"
#include "Platform/ScreenSource.h"
#include "Screen/Codecs/JpegCodec.h"
#include "Screen/Codecs/ZlibCodec.h"
#include "Screen/Codecs/ZstdCodec.h"
#include "Screen/CursorSender.h"
#include "Screen/Pacing.h"
#include "Screen/PictureSender.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace farview
{

/// Makes what the device is sent of the newest frames of a monitor, on a thread of its own. While
/// the link is busy no frame is taken, so that the next one is the newest. Sleeps while nothing
/// changes. Operations may be called on any thread.
class PictureThread
{
public:
    using Frames = std::vector<LinkFrame>;

    /// Both are called on the thread.
    struct Outlet {
        /// A picture's end is the last of each batch.
        std::function<void(Frames)> send;
        /// There was no memory: the thread has ended.
        std::function<void()> failed;
    };

    /// The sources outlive this. With `hasZstd` the device unpacks that, too. `lastFrame` is the
    /// number of the last frame that the device was sent before, or 0.
    PictureThread(ScreenSource& frames, CursorSource& cursor, bool hasZstd, std::uint32_t lastFrame,
                  Outlet outlet);
    /// Waits for the frame that is being made.
    ~PictureThread();
    PictureThread(const PictureThread&) = delete;
    PictureThread& operator=(const PictureThread&) = delete;

    /// There is a frame to take.
    void frameReady();
    /// There is something to ask the cursor source.
    void cursorChanged();
    /// The device has shown that frame. False when it was never sent.
    bool shown(std::uint32_t frame);
    /// The number of the last one that was made.
    std::uint32_t lastFrame();
    /// Whether the link takes more; it does at first.
    void setHasRoom(bool flag);

private:
    struct News {
        bool frame = false;
        bool cursor = false;
    };

    void run(const std::stop_token& stop);
    std::optional<News> nextNews(const std::stop_token& stop);
    void makeBatch(const News& news, const std::stop_token& stop);
    void followCursor();
    PictureSender::Packets packetsOfFrame(Frames& batch, const std::stop_token& stop);
    LinkPictureSize beginPicture(const FrameView& view);
    int qualityAtBeat(const std::stop_token& stop);
    void refine(Frames& batch);
    int quality();
    void send(Frames batch);

    ScreenSource& mFrames;
    CursorSource& mCursor;
    Outlet mOutlet;
    ZlibCodec mZlib;
    std::optional<ZstdCodec> mZstd;
    JpegCodec mJpeg;
    CursorSender mCursorSender{mZlib};
    std::optional<PictureSender> mSender;
    int mWidth = 0; ///< of the picture
    int mHeight = 0;
    PictureTime mNextRefinement{};

    std::mutex mMutex;
    std::condition_variable_any mChanged;
    News mNews;
    bool mHasRoom = true;
    Pacing mPacing;

    std::jthread mThread;
};

} // namespace farview
