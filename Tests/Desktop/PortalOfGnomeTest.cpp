#include "Platform/Desktop/Screens/Portal/PortalMonitor.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/Mutter/MutterSession.h"
#include "Platform/Desktop/Screens/Portal/PortalVirtualScreens.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Desktop/ScriptedScreenPortal.h"
#include "Tests/Support/PrivateGnome.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>

namespace farview
{
namespace
{

constexpr auto limit = std::chrono::seconds(20);

FileDescriptor connectionToPipeWire()
{
    FileDescriptor file(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    const auto path = std::string(std::getenv("XDG_RUNTIME_DIR")) + "/pipewire-0";
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    EXPECT_EQ(::connect(file.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    return file;
}

/// A portal that adds monitors. It is a scripted one, because those of GNOME want a whole shell for
/// their question; what it shows is a real monitor of Mutter's.
class PortalOfGnomeTest : public testing::Test
{
protected:
    PortalOfGnomeTest()
    {
        mMutter.prepare();
        EXPECT_TRUE(waitUntil([this] { return mIsShown; }, limit));
        mPortal.remote = mRemote.get();
    }
    void open(int width, int height)
    {
        mListener->frame = [this] {
            if (const auto frame = mScreen->frames().takeFrame())
                mWidth = frame->view.width;
        };
        mScreen = mScreens.open({.name = "Tablet", .width = width, .height = height}, mListener);
    }
    bool comesToShow(int width)
    {
        return waitUntil([this, width] { return mWidth == width; }, limit);
    }

    PrivateGnome mDesktop;
    FakeLog mLog;
    TestBus mBus{mLog};
    QtRunLoop mLoop;
    ScriptedScreenPortal mPortal{mDesktop.bus().address()};
    FileDescriptor mRemote = connectionToPipeWire();
    bool mIsShown = false;
    MutterSession mMutter{mBus,
                          {[this] { mMutter.start(); },
                           [this](auto node) {
                               mPortal.show({}, node);
                               mIsShown = true;
                           },
                           [](auto) {}}};
    PortalVirtualScreens mScreens{mLoop, mBus};
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
    int mWidth = 0;
    std::unique_ptr<VirtualScreen> mScreen;
};

TEST_F(PortalOfGnomeTest, AMonitorOfOurOwnHasTheSizeThatIsWanted)
{
    open(1024, 600);
    ASSERT_TRUE(comesToShow(1024));
    EXPECT_EQ(mListener->geometry->area, pixelRect(0, 0, 1024, 600));
    EXPECT_FALSE(mListener->geometry->isMirror);
    EXPECT_FALSE(mScreen->cursor().isInFrames());
}

TEST_F(PortalOfGnomeTest, AMonitorOfOurOwnTurnsWithItsDevice)
{
    open(1024, 600);
    ASSERT_TRUE(comesToShow(1024));
    mScreen->resize(600, 1024);
    ASSERT_TRUE(comesToShow(600));
    EXPECT_EQ(mListener->geometry->height, 1024);
    EXPECT_EQ(mListener->geometry->scale, 1);
    mScreen->resize(0, 100'000);
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(mListener->geometries.size(), 2U);
}

TEST_F(PortalOfGnomeTest, EndsWithTheStream)
{
    open(1024, 600);
    ASSERT_TRUE(comesToShow(1024));
    mMutter.stop();
    EXPECT_TRUE(waitUntil([this] { return mListener->end.has_value(); }, limit));
    EXPECT_EQ(mListener->end, ScreenObstacle::takenAway);
}

} // namespace
} // namespace farview
