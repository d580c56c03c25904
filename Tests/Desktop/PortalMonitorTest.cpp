#include "Platform/Desktop/Screens/Portal/PortalMonitor.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/Portal/PortalVirtualScreens.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Desktop/ScriptedScreenPortal.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

/// Where there is no PipeWire.
class PortalMonitorTest : public testing::Test
{
protected:
    struct Listener final : VirtualScreenDelegate {
        int questions = 0;
        std::optional<ScreenObstacle> end;

        void userIsAsked() override { ++questions; }
        void didAppear(const ScreenGeometry&) override {}
        void didChange(const ScreenGeometry&) override {}
        void frameReady() override {}
        void cursorChanged() override {}
        void didEnd(ScreenObstacle reason) override { end = reason; }
    };

    void open(int width = 1024, int height = 600)
    {
        mScreen = mScreens.open({.name = "Tablet", .width = width, .height = height}, mListener);
    }
    std::optional<ScreenAvailability> availability()
    {
        std::optional<ScreenAvailability> answer;
        mScreens.availability(mListener, [&](const auto& found) { answer = found; });
        EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }));
        return answer;
    }

    PrivateBus mPrivateBus;
    SessionBusScope mScope{mPrivateBus.address()};
    ScriptedScreenPortal mPortal{mPrivateBus.address()};
    FakeLog mLog;
    TestBus mBus{mLog};
    QtRunLoop mLoop;
    PortalVirtualScreens mScreens{mLoop, mBus};
    std::shared_ptr<Listener> mListener = std::make_shared<Listener>();
    std::unique_ptr<VirtualScreen> mScreen;
};

TEST_F(PortalMonitorTest, SaysThatTheUserIsAsked)
{
    mPortal.waiting = QStringLiteral("Start");
    open();
    EXPECT_TRUE(waitUntil([this] { return mListener->questions == 1; }));
    EXPECT_EQ(mListener->end, std::nullopt);
}

TEST_F(PortalMonitorTest, AStreamThatIsNoneEndsIt)
{
    open();
    ASSERT_TRUE(waitUntil([this] { return mListener->end.has_value(); }));
    EXPECT_EQ(mListener->end, ScreenObstacle::failed);
}

TEST_F(PortalMonitorTest, SizesThatNoScreenHasAreRefusedUnasked)
{
    open(65535, 65535);
    ASSERT_TRUE(waitUntil([this] { return mListener->end.has_value(); }));
    EXPECT_EQ(mListener->end, ScreenObstacle::tooLarge);
    EXPECT_TRUE(mPortal.calls.empty());
}

TEST_F(PortalMonitorTest, TheWayIsWhatThePortalOffers)
{
    EXPECT_EQ(availability()->way, ScreenWay::portal);
    mPortal.screenCast[QStringLiteral("AvailableSourceTypes")] = 3U;
    EXPECT_EQ(availability()->way, ScreenWay::existingScreen);
    mPortal.screenCast[QStringLiteral("AvailableSourceTypes")] = 2U;
    EXPECT_EQ(availability()->obstacle, ScreenObstacle::protocolMissing);
    mPortal.screenCast[QStringLiteral("AvailableSourceTypes")] = 7U;
    mPortal.leave();
    EXPECT_EQ(availability()->obstacle, ScreenObstacle::protocolMissing);
}

} // namespace
} // namespace farview
