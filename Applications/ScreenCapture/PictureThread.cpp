#include "Applications/ScreenCapture/PictureThread.h"

#include "Link/Wire/ScreenPacket.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

namespace farview
{
namespace
{

/// Between two looks for tiles that have stood still long enough.
constexpr PictureTime refinementPause = std::chrono::milliseconds(20);

PictureTime now()
{
    return std::chrono::duration_cast<PictureTime>(
        std::chrono::steady_clock::now().time_since_epoch());
}

std::chrono::steady_clock::time_point clockTime(PictureTime time)
{
    return std::chrono::steady_clock::time_point(time);
}

/// Of a desktop's pointer, as much as a device takes.
std::optional<Cursor> cursorOf(const CursorImage& image)
{
    const int width = std::min(image.width, Cursor::largestSide);
    const int height = std::min(image.height, Cursor::largestSide);
    if (width <= 0 || height <= 0)
        return std::nullopt;
    Cursor cursor{pixelPoint(std::clamp<int>(image.hotspot.x, 0, width - 1),
                             std::clamp<int>(image.hotspot.y, 0, height - 1)),
                  Picture(width, height)};
    for (int y = 0; y < height; ++y)
        std::copy_n(image.pixels.begin() + static_cast<std::ptrdiff_t>(y) * image.width, width,
                    cursor.image.row(y));
    return cursor;
}

void append(PictureThread::Frames& batch, std::vector<LinkScreenRectangle> packets)
{
    std::move(packets.begin(), packets.end(), std::back_inserter(batch));
}

std::size_t sizeOf(const PictureThread::Frames& batch)
{
    std::size_t size = 0;
    for (const auto& frame : batch) {
        if (const auto* rectangle = std::get_if<LinkScreenRectangle>(&frame))
            size += kScreenPacketHeaderSize + rectangle->data.size();
    }
    return size;
}

} // namespace

PictureThread::PictureThread(ScreenSource& frames, CursorSource& cursor, bool hasZstd,
                             std::uint32_t lastFrame, Outlet outlet)
    : mFrames(frames), mCursor(cursor), mOutlet(std::move(outlet)), mPacing(lastFrame)
{
    if (hasZstd)
        mZstd.emplace();
    mThread = std::jthread([this](const std::stop_token& stop) {
        try {
            run(stop);
        } catch (const std::bad_alloc&) {
            mOutlet.failed();
        }
    });
}

PictureThread::~PictureThread() = default;

void PictureThread::frameReady()
{
    const std::lock_guard lock(mMutex);
    mNews.frame = true;
    mChanged.notify_one();
}

void PictureThread::cursorChanged()
{
    const std::lock_guard lock(mMutex);
    mNews.cursor = true;
    mChanged.notify_one();
}

bool PictureThread::shown(std::uint32_t frame)
{
    const std::lock_guard lock(mMutex);
    mChanged.notify_one();
    return mPacing.shown(frame, now());
}

std::uint32_t PictureThread::lastFrame()
{
    const std::lock_guard lock(mMutex);
    return mPacing.lastFrame();
}

void PictureThread::setHasRoom(bool flag)
{
    const std::lock_guard lock(mMutex);
    mHasRoom = flag;
    mChanged.notify_one();
}

void PictureThread::run(const std::stop_token& stop)
{
    while (const auto news = nextNews(stop))
        makeBatch(*news, stop);
}

/// Until something can be sent; without news it is time to refine. Nothing at the end.
std::optional<PictureThread::News> PictureThread::nextNews(const std::stop_token& stop)
{
    std::unique_lock lock(mMutex);
    const auto mayBegin = [this] { return mPacing.mayBegin(now(), 0, mHasRoom); };
    const auto hasNews = [&] { return (mNews.frame || mNews.cursor) && mayBegin(); };
    if (!mSender || mSender->isExact()) {
        mChanged.wait(lock, stop, hasNews);
    } else {
        mChanged.wait_until(lock, stop, clockTime(mNextRefinement), hasNews);
        mChanged.wait(lock, stop, mayBegin);
    }
    return stop.stop_requested() ? std::nullopt : std::optional(std::exchange(mNews, {}));
}

void PictureThread::makeBatch(const News& news, const std::stop_token& stop)
{
    if (news.cursor)
        followCursor();
    Frames batch;
    auto packets = news.frame ? packetsOfFrame(batch, stop) : PictureSender::Packets{};
    if (!mSender)
        return;
    append(batch, mCursorSender.takePackets());
    append(batch, std::move(packets));
    refine(batch);
    if (!batch.empty())
        send(std::move(batch));
}

void PictureThread::followCursor()
{
    if (mCursor.isInFrames())
        return;
    if (const auto image = mCursor.takeImage())
        mCursorSender.setCursor(cursorOf(*image));
    mCursorSender.setPlace(mCursor.position());
}

/// Puts the beginning of a picture of another size into the batch.
PictureSender::Packets PictureThread::packetsOfFrame(Frames& batch, const std::stop_token& stop)
{
    const auto frame = mFrames.takeFrame();
    if (!frame)
        return {};
    const auto& view = frame->view;
    if (!mSender || mWidth != view.width || mHeight != view.height)
        batch.emplace_back(beginPicture(view));
    mSender->noteDamage(frame->damage);
    const int quality = qualityAtBeat(stop);
    return mSender->packetsFor(view, quality, now());
}

LinkPictureSize PictureThread::beginPicture(const FrameView& view)
{
    mWidth = view.width;
    mHeight = view.height;
    PixelCodec& lossless = mZstd ? static_cast<PixelCodec&>(*mZstd) : mZlib;
    mSender.emplace(mWidth, mHeight, lossless, mJpeg);
    mCursorSender.deviceForgot();
    return {static_cast<std::uint16_t>(mWidth), static_cast<std::uint16_t>(mHeight)};
}

/// Until what has changed may be sent. The quality that it gets.
int PictureThread::qualityAtBeat(const std::stop_token& stop)
{
    std::unique_lock lock(mMutex);
    const auto mayBegin = [this] {
        return mPacing.mayBegin(now(), mSender->damagedTiles(), mHasRoom);
    };
    mChanged.wait_until(lock, stop, clockTime(mPacing.nextBeat()), mayBegin);
    mChanged.wait(lock, stop, mayBegin);
    return mPacing.beat(now());
}

/// In the gaps between frames, and little at a time where the link is slow.
void PictureThread::refine(Frames& batch)
{
    if (now() < mNextRefinement)
        return;
    auto packets = mSender->refinement(refinedAtOnce(quality()), now());
    mNextRefinement = packets.empty() ? now() + refinementPause : now();
    append(batch, std::move(packets));
}

int PictureThread::quality()
{
    const std::lock_guard lock(mMutex);
    return mPacing.quality();
}

void PictureThread::send(Frames batch)
{
    {
        const std::lock_guard lock(mMutex);
        batch.emplace_back(LinkFrameEnd{mPacing.begin(now(), sizeOf(batch))});
    }
    mOutlet.send(std::move(batch));
}

} // namespace farview
