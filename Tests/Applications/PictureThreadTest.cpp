#include "Applications/ScreenCapture/PictureThread.h"

#include "Platform/Fake/FakePlatform.h"
#include "Screen/PictureReceiver.h"
#include "Tests/Screen/Scenes.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <vector>

namespace farview
{
namespace
{

/// A screen whose pixels the test has.
class Scene final : public ScreenSource, public CursorSource
{
public:
    std::optional<ScreenFrame> takeFrame() override
    {
        const std::lock_guard lock(mMutex);
        if (mRefusesMemory)
            throw std::bad_alloc();
        if (!std::exchange(mIsNew, false))
            return std::nullopt;
        ++mTaken;
        const auto copy = std::make_shared<Picture>(*mPicture);
        return ScreenFrame{copy->view(), {pixelRect(0, 0, copy->width(), copy->height())}, copy};
    }
    bool isInFrames() const override { return false; }
    std::optional<CursorImage> takeImage() override
    {
        const std::lock_guard lock(mMutex);
        return std::exchange(mImage, std::nullopt);
    }
    std::optional<PixelPoint> position() override { return pixelPoint(7, 8); }

    void show(const Picture& picture)
    {
        const std::lock_guard lock(mMutex);
        mPicture = picture;
        mIsNew = true;
    }
    void setCursor(const CursorImage& image)
    {
        const std::lock_guard lock(mMutex);
        mImage = image;
    }
    void refuseMemory() { mRefusesMemory = true; }
    int taken()
    {
        const std::lock_guard lock(mMutex);
        return mTaken;
    }

private:
    std::mutex mMutex;
    std::optional<Picture> mPicture;
    std::optional<CursorImage> mImage;
    bool mIsNew = false;
    bool mRefusesMemory = false;
    int mTaken = 0;
};

/// A device that is sent the picture, and says what it has shown when the test wants.
class APictureThread : public testing::Test
{
protected:
    ~APictureThread() override { thread.reset(); }

    void start(bool hasZstd = true, std::uint32_t lastFrame = 0)
    {
        const PictureThread::Outlet outlet{
            [this](const PictureThread::Frames& frames) { take(frames); },
            [this] { hasFailed = true; }};
        thread = std::make_unique<PictureThread>(scene, scene, hasZstd, lastFrame, outlet);
    }
    void show(const Picture& picture)
    {
        scene.show(picture);
        thread->frameReady();
    }
    void take(const PictureThread::Frames& frames)
    {
        const std::lock_guard lock(mutex);
        for (const auto& frame : frames) {
            if (const auto* size = std::get_if<LinkPictureSize>(&frame))
                receiver.emplace(size->width, size->height, zlib,
                                 std::vector<PixelCodec*>{&zstd, &jpeg});
            else if (const auto* packet = std::get_if<LinkScreenRectangle>(&frame))
                EXPECT_TRUE(receiver->apply(*packet));
            else
                last = std::get<LinkFrameEnd>(frame).number;
        }
    }
    std::uint32_t lastFrame()
    {
        const std::lock_guard lock(mutex);
        return last;
    }
    bool equals(const Picture& picture)
    {
        const std::lock_guard lock(mutex);
        const auto whole = pixelRect(0, 0, picture.width(), picture.height());
        return receiver && receiver->picture().width() == picture.width() &&
               isSame(receiver->picture().view(), picture.view(), whole);
    }
    /// The device shows whatever comes, at once.
    bool becomes(const Picture& picture)
    {
        return waitUntil([&] {
            thread->shown(lastFrame());
            return equals(picture);
        });
    }

    std::mutex mutex;
    ZlibCodec zlib;
    ZstdCodec zstd;
    JpegCodec jpeg;
    std::optional<PictureReceiver> receiver;
    std::uint32_t last = 0;
    std::atomic<bool> hasFailed = false;
    Scene scene;
    std::unique_ptr<PictureThread> thread;
};

Picture textPage(unsigned seed)
{
    Picture picture(640, 480);
    Scenes(seed).writeText(picture, wholeOf(picture));
    return picture;
}

TEST_F(APictureThread, BringsTheDeviceWhatTheScreenShows)
{
    start();
    show(textPage(1));
    EXPECT_TRUE(becomes(textPage(1)));
    show(textPage(2));
    EXPECT_TRUE(becomes(textPage(2)));
}

TEST_F(APictureThread, MakesAPhotographExactOnceItIsStill)
{
    Picture photograph(640, 480);
    Scenes(1).takePhotograph(photograph, wholeOf(photograph));
    start();
    show(photograph);
    EXPECT_TRUE(becomes(photograph));
}

TEST_F(APictureThread, BeginsAnewWithAScreenOfAnotherSize)
{
    start();
    show(textPage(1));
    ASSERT_TRUE(becomes(textPage(1)));
    Picture smaller(320, 200);
    Scenes(2).writeText(smaller, wholeOf(smaller));
    show(smaller);
    EXPECT_TRUE(becomes(smaller));
}

TEST_F(APictureThread, TakesNoFrameForADeviceThatShowsNoneAndThenTheNewest)
{
    start();
    for (unsigned page = 1; page <= 2; ++page) {
        show(textPage(page));
        ASSERT_TRUE(waitUntil([&] { return lastFrame() == page; }));
    }
    for (unsigned page = 3; page <= 9; ++page)
        show(textPage(page));
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(scene.taken(), 2);
    EXPECT_TRUE(becomes(textPage(9)));
    EXPECT_EQ(scene.taken(), 3);
}

TEST_F(APictureThread, TakesNoFrameWhileTheLinkHasNoRoom)
{
    start();
    thread->setHasRoom(false);
    show(textPage(1));
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(scene.taken(), 0);
    thread->setHasRoom(true);
    EXPECT_TRUE(becomes(textPage(1)));
}

TEST_F(APictureThread, SendsThePointerOnceAPictureIsThere)
{
    scene.setCursor({3, 4, pixelPoint(1, 9), std::vector<std::uint32_t>(12, 0xff112233)});
    start();
    thread->cursorChanged();
    show(textPage(1));
    ASSERT_TRUE(becomes(textPage(1)));
    const std::lock_guard lock(mutex);
    ASSERT_TRUE(receiver->cursor());
    EXPECT_EQ(receiver->cursor()->image.width(), 3);
    EXPECT_EQ(receiver->cursor()->hotspot, pixelPoint(1, 3)) << "kept within the image";
    EXPECT_EQ(receiver->cursorPlace(), pixelPoint(7, 8));
}

TEST_F(APictureThread, SaysThatThereWasNoMemory)
{
    scene.refuseMemory();
    start();
    show(textPage(1));
    EXPECT_TRUE(waitUntil([&] { return hasFailed.load(); }));
}

TEST_F(APictureThread, EndsWhileTheDeviceIsSilent)
{
    start();
    show(textPage(1));
    ASSERT_TRUE(waitUntil([&] { return lastFrame() == 1; }));
    show(textPage(2));
    thread.reset();
    EXPECT_LE(lastFrame(), 2U);
}

TEST_F(APictureThread, GoesOnCountingWhereAnEarlierOneEnded)
{
    start(false, 41);
    show(textPage(1));
    EXPECT_TRUE(becomes(textPage(1))) << "without zstd";
    EXPECT_EQ(lastFrame(), 42U);
    EXPECT_EQ(thread->lastFrame(), 42U);
}

} // namespace
} // namespace farview
