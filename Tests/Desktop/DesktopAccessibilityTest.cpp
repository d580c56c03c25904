#include "Platform/Desktop/Rights/DesktopAccessibility.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>

namespace farview
{
namespace
{

/// A session in which only the setting decides, unless a test says otherwise.
class DesktopAccessibilityTest : public testing::Test
{
protected:
    PrivateBus mPrivateBus;
    SessionBusScope mScope{mPrivateBus.address()};
    ScopedEnvironment mDisplay{"DISPLAY", nullptr};
    ScopedEnvironment mWayland{"WAYLAND_DISPLAY", "wayland-0"};
    ScopedEnvironment mDesktop{"XDG_CURRENT_DESKTOP", "ubuntu:GNOME"};
    FakeLog mLog;
    SessionBus mBus{mLog};
    DesktopAccessibility mAccessibility{mBus};
};

TEST_F(DesktopAccessibilityTest, IsOffWhereNobodyOffersTheSetting)
{
    EXPECT_FALSE(mAccessibility.isEnabled());
}

TEST_F(DesktopAccessibilityTest, IsOnInAnXSession)
{
    const ScopedEnvironment wayland("WAYLAND_DISPLAY", nullptr);
    EXPECT_FALSE(mAccessibility.isEnabled());
    const ScopedEnvironment display("DISPLAY", ":0");
    EXPECT_TRUE(mAccessibility.isEnabled());
}

TEST_F(DesktopAccessibilityTest, IsNotOnForAnXServerInsideAWaylandSession)
{
    const ScopedEnvironment display("DISPLAY", ":0");
    EXPECT_FALSE(mAccessibility.isEnabled());
}

TEST_F(DesktopAccessibilityTest, IsOnWhereTheCompositorLetsProgramsMoveWindows)
{
    for (const char* desktop : {"KDE", "sway", "sway:wlroots", "ubuntu:KDE"}) {
        const ScopedEnvironment current("XDG_CURRENT_DESKTOP", desktop);
        EXPECT_TRUE(mAccessibility.isEnabled()) << desktop;
    }
}

/// Offers the setting as the accessibility bus does: a process of its own, because the question
/// blocks who asks.
class WithSetting : public DesktopAccessibilityTest
{
protected:
    ChildProcess startSetting(const char* value)
    {
        return ChildProcess({FARVIEW_TEST_PEER, "accessibility", value});
    }
    void waitForSetting()
    {
        ASSERT_TRUE(waitUntil([this] { return !mBus.nameOwner("org.a11y.Bus").isEmpty(); }));
    }
};

TEST_F(WithSetting, FollowsTheSettingElsewhere)
{
    {
        const auto setting = startSetting("on");
        waitForSetting();
        EXPECT_TRUE(mAccessibility.isEnabled());
    }
    EXPECT_FALSE(mAccessibility.isEnabled());
    const auto setting = startSetting("off");
    waitForSetting();
    EXPECT_FALSE(mAccessibility.isEnabled());
}

TEST_F(WithSetting, ASettingThatHangsIsWaitedForBriefly)
{
    const auto setting = startSetting("on");
    waitForSetting();
    setting.sendSignal(SIGSTOP);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(mAccessibility.isEnabled());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(DesktopAccessibility, IsOffWithoutABus)
{
    const ScopedEnvironment wayland("WAYLAND_DISPLAY", "wayland-0");
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "GNOME");
    FakeLog log;
    SessionBus bus(log);
    EXPECT_FALSE(DesktopAccessibility(bus).isEnabled());
}

} // namespace
} // namespace farview
