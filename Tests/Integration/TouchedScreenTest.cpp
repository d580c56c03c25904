// What the user of a device does there, and what comes of it on the computer's X server: the real
// programs, each on a display of its own.

#include "Tests/Integration/TouchedScreen.h"
#include "Tests/Support/InputWindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <iterator>
#include <sys/wait.h>
#include <utility>

namespace farview
{
namespace
{

class TouchedScreenOnX11 : public TouchedScreen
{
protected:
    void SetUp() override
    {
        desktop.showOnce(1);
        environment["FARVIEW_TEST_INPUT"] = display.folder();
        TouchedScreen::SetUp();
        if (!IsSkipped() && !HasFatalFailure())
            waitForPicture();
    }
    /// Until then the device's window is another one.
    void waitForPicture()
    {
        for (const auto& [colour, width] : {std::pair(0xFF0000U, kGlass.width), {0U, 0}}) {
            desktop.fill({1920, 0, kGlass.width, kGlass.height}, colour);
            ASSERT_TRUE(waitUntil([&] { return redPart().width == width; })) << deviceLog();
        }
    }

    /// Puts the program's window on the monitor.
    void moveThere(const std::string& name)
    {
        ChildProcess mover({"xdotool", "search", "--sync", "--onlyvisible", "--class", name,
                            "windowmove", "1920", "0"});
        EXPECT_TRUE(mover.waitForEnd(kStart));
    }
    void coverDesktop()
    {
        window = std::make_unique<InputWindow>(display.display(), 0, 0, 3840, 1080);
    }
    /// False when it does not within a while.
    bool hears(const std::string& what, milliseconds limit = seconds(10))
    {
        const auto isHeard = [&] {
            std::ranges::copy(window->takeEvents(), std::back_inserter(heard));
            return hasHeard(what);
        };
        return waitUntil(isHeard, limit);
    }
    bool hasHeard(const std::string& what) const
    {
        return std::ranges::any_of(heard, [&](const auto& event) { return event.ends_with(what); });
    }
    bool holdsKeys(std::size_t count)
    {
        return waitUntil([&] { return window->keys().size() == count; }, kNoticed);
    }
    /// One finger and one key.
    void holdBoth()
    {
        letType();
        touch(0, TouchPhase::down, 300, 400);
        ASSERT_TRUE(hears("begins 2220,400")) << serverLog() << deviceLog();
        EXPECT_TRUE(waitUntil([&] {
            if (window->keys().empty())
                useMouseAndKeys({"keydown", "a"});
            return !window->keys().empty();
        }));
    }

    PrivateXServer display;
    ScreenArranger desktop{display.display()};
    /// A program's, which covers the whole desktop and has its keyboard.
    std::unique_ptr<InputWindow> window;
    std::vector<std::string> heard;
};

TEST_F(TouchedScreenOnX11, TwoFingersZoomAProgram)
{
    startThere({"eog", redSquare()});
    moveThere("eog");
    const auto before = seenRed();
    ASSERT_GT(before.width, 50) << serverLog() << deviceLog();
    spreadFingers(before.x + before.width / 2, before.y + before.height / 2);
    EXPECT_TRUE(isRedWiderThan(2 * before.width)) << serverLog() << deviceLog();
}

TEST_F(TouchedScreenOnX11, AFingerPressesTheButtonThatTheUserSees)
{
    startThere({"xmessage", "-geometry", "600x300+2500+300", "-buttons", "Press:7", "-xrm",
                "*Press.background: red", "A button"});
    const auto button = seenRed();
    ASSERT_GT(button.x, 500) << serverLog() << deviceLog();
    tap(button.x + button.width / 2, button.y + button.height / 2);
    const auto status = program->waitForEnd();
    ASSERT_TRUE(status) << serverLog() << deviceLog();
    EXPECT_EQ(WEXITSTATUS(*status), 7);
}

TEST_F(TouchedScreenOnX11, TheDevicesMouseClicks)
{
    coverDesktop();
    useMouseAndKeys({"mousemove", "300", "400", "click", "3"});
    EXPECT_TRUE(hears("down 3 2220,400")) << serverLog() << deviceLog();
    EXPECT_TRUE(hears("up 3 2220,400"));
}

TEST_F(TouchedScreenOnX11, KeysArriveOnceTheUserLetsThatDeviceType)
{
    coverDesktop();
    useMouseAndKeys({"key", "a"});
    tap(300, 400);
    ASSERT_TRUE(hears(" ends 2220,400")) << serverLog() << deviceLog();
    EXPECT_EQ(window->typed(), "") << "what was done later has arrived";
    letType();
    EXPECT_TRUE(waitUntil([&] {
        useMouseAndKeys({"key", "b"});
        return !window->typed().empty();
    }));
    EXPECT_EQ(window->typed().find_first_not_of('b'), std::string::npos);
}

TEST_F(TouchedScreenOnX11, TheOptionLiftsTheFingerAtOnceAndLetsNoneThrough)
{
    coverDesktop();
    touch(0, TouchPhase::down, 300, 400);
    ASSERT_TRUE(hears("begins 2220,400")) << serverLog() << deviceLog();
    preferences->setEnableTouchDisplay(false);
    EXPECT_TRUE(hears(" ends 2220,400")) << serverLog();
    touch(0, TouchPhase::up, 300, 400);
    ASSERT_TRUE(deviceSays("these options: retina windows-move-back\n")) << deviceLog();
    tap(500, 600);
    preferences->setEnableTouchDisplay(true);
    EXPECT_TRUE(waitUntil([&] {
        tap(700, 800);
        return hears(" ends 2620,800", milliseconds(100));
    }));
    EXPECT_FALSE(hasHeard("2420,600"));
}

TEST_F(TouchedScreenOnX11, NothingStaysDownWhenTheDeviceDies)
{
    coverDesktop();
    holdBoth();
    device->kill();
    EXPECT_TRUE(hears(" ends 2220,400")) << serverLog();
    EXPECT_TRUE(holdsKeys(0)) << serverLog();
}

TEST_F(TouchedScreenOnX11, NothingStaysDownWhenTheDeviceFallsSilent)
{
    coverDesktop();
    holdBoth();
    device->sendSignal(SIGSTOP);
    EXPECT_TRUE(holdsKeys(0)) << serverLog();
    EXPECT_TRUE(hears(" ends 2220,400")) << serverLog();
}

} // namespace
} // namespace farview
