#include "Platform/Desktop/Screens/ScreenBackends.h"

#include "Platform/Fake/FakeLog.h"
#include "Platform/Fake/FakeVirtualScreens.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Desktop/ScriptedMutter.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <memory>

namespace farview
{
namespace
{

struct Session {
    const char* name;
    SessionFacts facts;
    ScreenBackend backend;
};

SessionFacts onWayland(SessionFacts facts)
{
    facts.type = "wayland";
    facts.waylandDisplay = "wayland-0";
    return facts;
}

class ScreenBackendOf : public testing::TestWithParam<Session>
{
};

TEST_P(ScreenBackendOf, TheSession)
{
    EXPECT_EQ(screenBackendFor(GetParam().facts), GetParam().backend);
}

INSTANTIATE_TEST_SUITE_P(
    All, ScreenBackendOf,
    testing::Values(
        Session{"nothing", {}, ScreenBackend::none},
        Session{"aTerminal", {.type = "tty"}, ScreenBackend::none},
        Session{"x11", {.type = "x11", .display = ":0", .desktop = "XFCE"}, ScreenBackend::x11},
        Session{"x11WithoutAType", {.display = ":1"}, ScreenBackend::x11},
        Session{"gnomeOnXorg",
                {.type = "x11", .display = ":0", .desktop = "GNOME", .hasMutter = true},
                ScreenBackend::x11},
        Session{"i3WithALeftOver", {.display = ":0", .swaySocket = "/old"}, ScreenBackend::x11},
        Session{"gnome", onWayland({.display = ":0", .hasMutter = true}), ScreenBackend::mutter},
        Session{"gnomeOfUbuntu", onWayland({.desktop = "ubuntu:GNOME"}), ScreenBackend::mutter},
        Session{"mutterAlone",
                {.type = "tty", .waylandDisplay = "wayland-0", .hasMutter = true},
                ScreenBackend::mutter},
        Session{"gnomeWithoutADisplayYet",
                {.type = "wayland", .desktop = "GNOME"},
                ScreenBackend::mutter},
        Session{"gnomeInASandbox",
                onWayland({.desktop = "GNOME", .isSandboxed = true, .hasMutter = true}),
                ScreenBackend::portal},
        Session{"sway", onWayland({.desktop = "sway", .swaySocket = "/run/sway"}),
                ScreenBackend::wlroots},
        Session{"hyprland", onWayland({.desktop = "Hyprland", .hyprland = "v0_1"}),
                ScreenBackend::wlroots},
        Session{"plasma", onWayland({.display = ":0", .desktop = "KDE"}), ScreenBackend::kwin},
        Session{"anotherDesktop", onWayland({.desktop = "COSMIC"}), ScreenBackend::portal},
        Session{"aNameThatOnlyBeginsAlike", onWayland({.desktop = "GNOME-Flashback"}),
                ScreenBackend::portal}),
    [](const auto& session) { return session.param.name; });

class ScreenBackendsTest : public testing::Test
{
protected:
    ScreenBackendsTest()
    {
        mX11.setObstacle(ScreenObstacle::noSpareOutput);
        mGnome.setObstacle(ScreenObstacle::locked);
    }
    ScreenAvailability answerOf(ScreenBackends& screens)
    {
        std::optional<ScreenAvailability> answer;
        screens.availability(mListener, [&](const auto& found) { answer = found; });
        EXPECT_TRUE(waitUntil([&] {
            mLoop.runUntilIdle();
            return answer.has_value();
        }));
        return answer.value_or(ScreenAvailability{});
    }
    ScreenObstacle obstacle(ScreenBackends& screens)
    {
        const auto answer = answerOf(screens);
        EXPECT_FALSE(answer.way);
        return answer.obstacle;
    }
    std::optional<ScreenWay> way(ScreenBackends& screens) { return answerOf(screens).way; }

    PrivateBus mPrivateBus;
    SessionBusScope mScope{mPrivateBus.address()};
    FakeLog mLog;
    TestBus mBus{mLog};
    FakeRunLoop mLoop;
    FakeVirtualScreens mX11{mLoop};
    FakeVirtualScreens mGnome{mLoop};
    FakeVirtualScreens mPlasma{mLoop};
    FakeVirtualScreens mPortal{mLoop};
    ScreenBackends::Bodies mBodies{{ScreenBackend::x11, &mX11},
                                   {ScreenBackend::mutter, &mGnome},
                                   {ScreenBackend::kwin, &mPlasma},
                                   {ScreenBackend::portal, &mPortal}};
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
};

TEST_F(ScreenBackendsTest, OnAnXServerThatOneIsAsked)
{
    ScreenBackends screens(mBus, {.type = "x11", .display = ":0"}, mBodies);
    EXPECT_EQ(obstacle(screens), ScreenObstacle::noSpareOutput);
    EXPECT_NE(screens.open({}, mListener), nullptr);
}

TEST_F(ScreenBackendsTest, WhereNobodyCanBeAskedThereIsNoDesktop)
{
    ScreenBackends screens(mBus, {.type = "tty"}, mBodies);
    EXPECT_EQ(obstacle(screens), ScreenObstacle::noDesktop);
    EXPECT_EQ(screens.open({}, mListener), nullptr);
}

TEST_F(ScreenBackendsTest, MutterIsFoundByItsNameOnTheBus)
{
    const ScriptedMutter mutter(mPrivateBus.address());
    ScreenBackends screens(mBus, {.waylandDisplay = "wayland-0"}, mBodies);
    EXPECT_EQ(obstacle(screens), ScreenObstacle::locked);
    EXPECT_NE(screens.open({}, mListener), nullptr);
}

TEST_F(ScreenBackendsTest, WhereTheDesktopLetsNobodyAskThePortalIsAsked)
{
    mPlasma.setObstacle(ScreenObstacle::notPermitted);
    ScreenBackends screens(mBus, onWayland({.desktop = "KDE"}), mBodies);
    EXPECT_EQ(way(screens), ScreenWay::gnome);
    const auto screen = screens.open({}, mListener);
    EXPECT_EQ(mPortal.monitors().size(), 1U);
    EXPECT_EQ(mPlasma.monitors().size(), 0U);
}

TEST_F(ScreenBackendsTest, WhereThePortalCanNotHelpTheDesktopsReasonStands)
{
    mPlasma.setObstacle(ScreenObstacle::notPermitted);
    mPortal.setObstacle(ScreenObstacle::protocolMissing);
    ScreenBackends screens(mBus, onWayland({.desktop = "KDE"}), mBodies);
    EXPECT_EQ(obstacle(screens), ScreenObstacle::notPermitted);
}

TEST_F(ScreenBackendsTest, ALockedDesktopsPortalIsNotAsked)
{
    ScreenBackends screens(mBus, onWayland({.desktop = "GNOME"}), mBodies);
    EXPECT_EQ(obstacle(screens), ScreenObstacle::locked);
    EXPECT_NE(screens.open({}, mListener), nullptr);
    EXPECT_EQ(mPortal.monitors().size(), 0U);
}

TEST_F(ScreenBackendsTest, TheEnvironmentTellsOfTheSession)
{
    const ScopedEnvironment type("XDG_SESSION_TYPE", "wayland");
    const ScopedEnvironment wayland("WAYLAND_DISPLAY", "wayland-7");
    const ScopedEnvironment display("DISPLAY", ":7");
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "GNOME");
    const ScopedEnvironment sway("SWAYSOCK", "/run/sway");
    const ScopedEnvironment hyprland("HYPRLAND_INSTANCE_SIGNATURE", "v0_1");
    const ScopedEnvironment snap("SNAP", "/snap/farview");
    const auto facts = sessionFacts();
    EXPECT_EQ(facts.type, "wayland");
    EXPECT_EQ(facts.waylandDisplay, "wayland-7");
    EXPECT_EQ(facts.display, ":7");
    EXPECT_EQ(facts.desktop, "GNOME");
    EXPECT_EQ(facts.swaySocket, "/run/sway");
    EXPECT_EQ(facts.hyprland, "v0_1");
    EXPECT_TRUE(facts.isSandboxed);
    EXPECT_FALSE(facts.hasMutter);
}

} // namespace
} // namespace farview
