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
        Session{"aTerminal", {"tty", "", "", ""}, ScreenBackend::none},
        Session{"x11", {"x11", "", ":0", "XFCE"}, ScreenBackend::x11},
        Session{"x11WithoutAType", {"", "", ":1", ""}, ScreenBackend::x11},
        Session{"gnomeOnXorg", {"x11", "", ":0", "GNOME", true}, ScreenBackend::x11},
        Session{"gnome", {"wayland", "wayland-0", ":0", "GNOME", true}, ScreenBackend::mutter},
        Session{
            "gnomeOfUbuntu", {"wayland", "wayland-0", ":0", "ubuntu:GNOME"}, ScreenBackend::mutter},
        Session{
            "gnomeThatDoesNotAnswer", {"wayland", "wayland-0", "", "GNOME"}, ScreenBackend::mutter},
        Session{"mutterAlone", {"tty", "wayland-0", "", "", true}, ScreenBackend::mutter},
        Session{
            "gnomeWithoutADisplayYet", {"wayland", "", "", "GNOME", true}, ScreenBackend::mutter},
        Session{
            "anotherDesktopOnWayland", {"wayland", "wayland-0", ":0", "KDE"}, ScreenBackend::none},
        Session{"aNameThatOnlyBeginsAlike",
                {"wayland", "wayland-0", "", "GNOME-Flashback"},
                ScreenBackend::none}),
    [](const auto& session) { return session.param.name; });

class ScreenBackendsTest : public testing::Test
{
protected:
    ScreenBackendsTest()
    {
        mX11.setObstacle(ScreenObstacle::noSpareOutput);
        mGnome.setObstacle(ScreenObstacle::locked);
    }
    ScreenObstacle obstacle(ScreenBackends& screens)
    {
        std::optional<ScreenAvailability> answer;
        screens.availability(mListener, [&](const auto& found) { answer = found; });
        EXPECT_TRUE(waitUntil([&] {
            mLoop.runUntilIdle();
            return answer.has_value();
        }));
        return answer->obstacle;
    }

    PrivateBus mPrivateBus;
    SessionBusScope mScope{mPrivateBus.address()};
    FakeLog mLog;
    TestBus mBus{mLog};
    FakeRunLoop mLoop;
    FakeVirtualScreens mX11{mLoop};
    FakeVirtualScreens mGnome{mLoop};
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
};

TEST_F(ScreenBackendsTest, OnAnXServerThatOneIsAsked)
{
    ScreenBackends screens(mBus, {"x11", "", ":0", ""}, mX11, mGnome);
    EXPECT_EQ(obstacle(screens), ScreenObstacle::noSpareOutput);
    EXPECT_NE(screens.open({}, mListener), nullptr);
}

TEST_F(ScreenBackendsTest, WhereNobodyCanBeAskedThereIsNoDesktop)
{
    ScreenBackends screens(mBus, {"wayland", "wayland-0", "", "KDE"}, mX11, mGnome);
    EXPECT_EQ(obstacle(screens), ScreenObstacle::noDesktop);
    EXPECT_EQ(screens.open({}, mListener), nullptr);
}

TEST_F(ScreenBackendsTest, MutterIsFoundByItsNameOnTheBus)
{
    const ScriptedMutter mutter(mPrivateBus.address());
    ScreenBackends screens(mBus, {"", "wayland-0", "", ""}, mX11, mGnome);
    EXPECT_EQ(obstacle(screens), ScreenObstacle::locked);
    EXPECT_NE(screens.open({}, mListener), nullptr);
}

TEST_F(ScreenBackendsTest, TheEnvironmentTellsOfTheSession)
{
    const ScopedEnvironment type("XDG_SESSION_TYPE", "wayland");
    const ScopedEnvironment wayland("WAYLAND_DISPLAY", "wayland-7");
    const ScopedEnvironment display("DISPLAY", ":7");
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "GNOME");
    const auto facts = sessionFacts();
    EXPECT_EQ(facts.type, "wayland");
    EXPECT_EQ(facts.waylandDisplay, "wayland-7");
    EXPECT_EQ(facts.display, ":7");
    EXPECT_EQ(facts.desktop, "GNOME");
    EXPECT_FALSE(facts.hasMutter);
}

} // namespace
} // namespace farview
