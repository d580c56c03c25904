#include "Platform/Desktop/Screens/PipeWireStream.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/Mutter/MutterSession.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivateGnome.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <utility>

namespace farview
{
namespace
{

/// With a monitor that Mutter makes.
class PipeWireStreamTest : public testing::Test
{
protected:
    PipeWireStreamTest() { mSession.prepare(); }

    /// `whenConnected` is called before anything has come.
    bool connect(std::function<void()> whenConnected)
    {
        mWhenConnected = std::move(whenConnected);
        return waitUntil([this] { return mIsConnected; });
    }
    /// Whether a frame was announced that has that width.
    bool showsWidth(int width)
    {
        return waitUntil([this, width] {
            const auto frame =
                std::exchange(mIsReady, false) ? mStream.screen().takeFrame() : std::nullopt;
            return frame && frame->view.width == width;
        });
    }

    PrivateGnome mDesktop;
    FakeLog mLog;
    TestBus mBus{mLog};
    QtRunLoop mLoop;
    bool mIsReady = false;
    bool mMayPause = true;
    bool mIsConnected = false;
    std::function<void()> mWhenConnected;
    int mWishes = 0;
    int mResumptions = 0;
    PipeWireStream mStream{mLoop,
                           {.frameReady = [this] { mIsReady = true; },
                            .cursorChanged = [] {},
                            .ended = [](auto) {},
                            .wantsPause =
                                [this] {
                                    ++mWishes;
                                    if (mMayPause)
                                        mStream.pause();
                                },
                            .resumed = [this] { ++mResumptions; }}};
    MutterSession mSession{mBus,
                           {[this] { mSession.start(); },
                            [this](auto node) {
                                mStream.connect({node}, 800, 600);
                                mWhenConnected();
                                mIsConnected = true;
                            },
                            [](auto) {}}};
};

TEST_F(PipeWireStreamTest, ASizeMayBeShownBeforePipeWireTellsOfIt)
{
    ASSERT_TRUE(connect([this] { mStream.show(800, 600, false); }));
    EXPECT_TRUE(showsWidth(800));
}

TEST_F(PipeWireStreamTest, FramesOfANewSizeWaitUntilThatIsShown)
{
    ASSERT_TRUE(connect([this] { mStream.show(800, 600, false); }));
    ASSERT_TRUE(showsWidth(800));
    mStream.resize(640, 480);
    runLoopFor(std::chrono::milliseconds(800));
    EXPECT_FALSE(mStream.screen().takeFrame());
    mStream.show(640, 480, true);
    EXPECT_TRUE(showsWidth(640));
}

TEST_F(PipeWireStreamTest, EachWishForAPauseIsFollowedByOneResumption)
{
    ASSERT_TRUE(connect([this] { mStream.show(800, 600, false); }));
    ASSERT_TRUE(showsWidth(800));
    mMayPause = false;
    for (const int width : {640, 800, 640}) {
        const int before = mWishes;
        mStream.resize(width, 480);
        mStream.show(width, 480, true);
        ASSERT_TRUE(waitUntil([&] { return mWishes > before; }));
        EXPECT_EQ(mResumptions, before);
        mStream.pause();
        ASSERT_TRUE(waitUntil([&] { return mResumptions > before; }));
    }
    EXPECT_EQ(mResumptions, mWishes);
}

TEST_F(PipeWireStreamTest, AnotherSizeTakesThePlaceOfAPauseThatIsWanted)
{
    ASSERT_TRUE(connect([this] { mStream.show(800, 600, false); }));
    ASSERT_TRUE(showsWidth(800));
    mMayPause = false;
    ASSERT_TRUE(waitUntil([&] { return mWishes > 0; }));
    mStream.resize(640, 480);
    mStream.pause();
    EXPECT_TRUE(waitUntil([&] { return mResumptions == 1; }));
    mMayPause = true;
    mStream.show(640, 480, true);
    EXPECT_TRUE(showsWidth(640));
}

} // namespace
} // namespace farview
