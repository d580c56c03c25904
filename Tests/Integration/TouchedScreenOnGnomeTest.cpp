// The user of a device touches a monitor of a real GNOME without hardware.

#include "Tests/Integration/TouchedScreen.h"
#include "Tests/Support/PrivateGnome.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace farview
{
namespace
{

class TouchedScreenOnGnome : public TouchedScreen
{
protected:
    TouchedScreenOnGnome()
    {
        environment["DBUS_SESSION_BUS_ADDRESS"] = gnome.bus().address();
        environment["DBUS_SYSTEM_BUS_ADDRESS"] = gnome.bus().address();
        environment["XDG_RUNTIME_DIR"] = std::getenv("XDG_RUNTIME_DIR");
    }

    PrivateGnome gnome;
};

TEST_F(TouchedScreenOnGnome, TwoFingersZoomAProgram)
{
    startThere({"eog", redSquare()});
    letType();
    // Its window comes on the user's own screen, sooner or later.
    const auto isMoved = [&] {
        useMouseAndKeys({"key", "super+shift+Right"});
        runLoopFor(milliseconds(200));
        return redPart().width > 0;
    };
    ASSERT_TRUE(waitUntil(isMoved, kStart)) << serverLog() << deviceLog() << text("program.log");
    const auto before = seenRed();
    ASSERT_GT(before.width, 50) << serverLog() << deviceLog() << text("program.log");
    spreadFingers(before.x + before.width / 2, before.y + before.height / 2);
    EXPECT_TRUE(isRedWiderThan(2 * before.width)) << serverLog() << deviceLog();
}

} // namespace
} // namespace farview
