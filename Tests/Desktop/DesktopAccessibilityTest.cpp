#include "Platform/Desktop/Rights/DesktopAccessibility.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <vector>

namespace farview
{
namespace
{

/// What the question is answered with. Fails unless it is answered once.
bool whatIsTold(DesktopAccessibility& accessibility)
{
    const auto asker = std::make_shared<int>(0);
    std::vector<bool> answers;
    accessibility.askWhetherEnabled(asker, [&](bool isEnabled) { answers.push_back(isEnabled); });
    EXPECT_TRUE(waitUntil([&] { return !answers.empty(); }));
    return answers == std::vector<bool>{true};
}

/// A session in which only the setting decides, unless a test says otherwise.
class DesktopAccessibilityTest : public testing::Test
{
protected:
    bool isEnabled() { return whatIsTold(mAccessibility); }

    PrivateBus mPrivateBus;
    SessionBusScope mScope{mPrivateBus.address()};
    ScopedEnvironment mDisplay{"DISPLAY", nullptr};
    ScopedEnvironment mWayland{"WAYLAND_DISPLAY", "wayland-0"};
    ScopedEnvironment mDesktop{"XDG_CURRENT_DESKTOP", "ubuntu:GNOME"};
    FakeLog mLog;
    TestBus mBus{mLog};
    DesktopAccessibility mAccessibility{mBus};
};

TEST_F(DesktopAccessibilityTest, IsOffWhereNobodyOffersTheSetting) { EXPECT_FALSE(isEnabled()); }

TEST_F(DesktopAccessibilityTest, IsOnInAnXSession)
{
    const ScopedEnvironment wayland("WAYLAND_DISPLAY", nullptr);
    EXPECT_FALSE(isEnabled());
    const ScopedEnvironment display("DISPLAY", ":0");
    EXPECT_TRUE(isEnabled());
}

TEST_F(DesktopAccessibilityTest, IsNotOnForAnXServerInsideAWaylandSession)
{
    const ScopedEnvironment display("DISPLAY", ":0");
    EXPECT_FALSE(isEnabled());
}

TEST_F(DesktopAccessibilityTest, IsOnWhereTheCompositorLetsProgramsMoveWindows)
{
    for (const char* desktop : {"KDE", "sway", "sway:wlroots", "ubuntu:KDE"}) {
        const ScopedEnvironment current("XDG_CURRENT_DESKTOP", desktop);
        EXPECT_TRUE(isEnabled()) << desktop;
    }
}

/// Offers the setting as the accessibility bus does: in a process of its own.
class WithSetting : public DesktopAccessibilityTest
{
protected:
    ChildProcess startSetting(const char* value)
    {
        return ChildProcess({FARVIEW_TEST_PEER, "accessibility", value});
    }
    void waitForSetting()
    {
        ASSERT_TRUE(waitUntil([this] { return mBus.hasOwner("org.a11y.Bus"); }));
    }
};

TEST_F(WithSetting, FollowsTheSettingElsewhere)
{
    {
        const auto setting = startSetting("on");
        waitForSetting();
        EXPECT_TRUE(isEnabled());
    }
    EXPECT_FALSE(isEnabled());
    const auto setting = startSetting("off");
    waitForSetting();
    EXPECT_FALSE(isEnabled());
}

TEST_F(WithSetting, ASettingThatHangsHoldsNobodyUpAndCountsAsOff)
{
    const auto setting = startSetting("on");
    waitForSetting();
    setting.sendSignal(SIGSTOP);
    const auto asker = std::make_shared<int>(0);
    std::vector<bool> answers;
    mAccessibility.askWhetherEnabled(asker, [&](bool is) { answers.push_back(is); });
    EXPECT_TRUE(answers.empty()) << "it returns before the answer";
    EXPECT_TRUE(waitUntil([&] { return answers == std::vector<bool>{false}; }));
}

TEST_F(WithSetting, WhoHasGoneHearsNothing)
{
    const auto setting = startSetting("on");
    waitForSetting();
    mAccessibility.askWhetherEnabled(std::make_shared<int>(0),
                                     [](bool) { ADD_FAILURE() << "nobody is there to hear it"; });
    EXPECT_TRUE(isEnabled()) << "asked later, answered later";
}

TEST(DesktopAccessibility, IsOffWithoutABus)
{
    const ScopedEnvironment wayland("WAYLAND_DISPLAY", "wayland-0");
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "GNOME");
    FakeLog log;
    TestBus bus(log);
    DesktopAccessibility accessibility(bus);
    EXPECT_FALSE(whatIsTold(accessibility));
}

} // namespace
} // namespace farview
