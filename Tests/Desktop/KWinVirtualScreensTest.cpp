#include "Platform/Desktop/Screens/KWin/KWinVirtualScreens.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/KWin/KWinStream.h"
#include "Platform/Desktop/Screens/Wayland/WaylandConnection.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Support/PrivatePlasma.h"
#include "Tests/Support/PrivateSway.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>
#include <wayland-client.h>
#include <wayland-protocols/zkde-screencast-unstable-v1.h>

namespace farview
{
namespace
{

/// What is said on the desktop of this process.
class KWinQuestion
{
public:
    std::optional<ScreenAvailability> availability()
    {
        std::optional<ScreenAvailability> answer;
        mScreens.availability(mListener, [&](const auto& found) { answer = found; });
        waitUntil([&] { return answer.has_value(); });
        return answer;
    }
    std::optional<ScreenObstacle> endOfAMonitor()
    {
        const auto screen =
            mScreens.open({.name = "Tablet", .width = 800, .height = 600}, mListener);
        waitUntil([&] { return mListener->end.has_value(); });
        EXPECT_FALSE(mListener->geometry);
        return mListener->end;
    }

private:
    FakeLog mLog;
    TestBus mBus{mLog};
    QtRunLoop mLoop;
    KWinVirtualScreens mScreens{mLoop, mBus};
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
};

TEST(KWinVirtualScreens, AreOfferedToAProgramWhoseDesktopFileSaysSo)
{
    const PrivatePlasma desktop;
    EXPECT_EQ(KWinQuestion().availability()->way, ScreenWay::plasma);
}

TEST(KWinVirtualScreens, AreNotPermittedToOtherPrograms)
{
    const PrivatePlasma desktop(1, "");
    const auto answer = KWinQuestion().availability();
    EXPECT_FALSE(answer->way);
    EXPECT_EQ(answer->obstacle, ScreenObstacle::notPermitted);
    EXPECT_EQ(KWinQuestion().endOfAMonitor(), ScreenObstacle::notPermitted);
}

TEST(KWinVirtualScreens, AreUnknownToOtherCompositors)
{
    const PrivateSway desktop;
    EXPECT_EQ(KWinQuestion().availability()->obstacle, ScreenObstacle::protocolMissing);
    EXPECT_EQ(KWinQuestion().endOfAMonitor(), ScreenObstacle::protocolMissing);
}

TEST(KWinVirtualScreens, AreNowhereWithoutACompositor)
{
    const ScopedEnvironment nowhere("WAYLAND_DISPLAY", "/nonexistent");
    EXPECT_EQ(KWinQuestion().availability()->obstacle, ScreenObstacle::noDesktop);
    EXPECT_EQ(KWinQuestion().endOfAMonitor(), ScreenObstacle::gone);
}

TEST(KWinVirtualScreens, TellWhenKWinCannotMakeOne)
{
    const PrivatePlasma desktop;
    EXPECT_EQ(KWinQuestion().endOfAMonitor(), ScreenObstacle::failed);
}

} // namespace
} // namespace farview
