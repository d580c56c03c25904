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
    bool mIsConnected = false;
    std::function<void()> mWhenConnected;
    PipeWireStream mStream{mLoop, {[this] { mIsReady = true; }, [] {}, [](auto) {}}};
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

} // namespace
} // namespace farview
