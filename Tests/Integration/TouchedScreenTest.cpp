// What the user of a device does there, and what comes of it on the computer's X server: the real
// programs, each on a display of its own.

#include "Tests/Integration/TouchedScreen.h"
#include "Tests/Support/InputWindow.h"

#include <gmock/gmock.h>

#include <csignal>

namespace farview
{
namespace
{

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class TouchedScreenOnX11 : public TouchedScreen
{
protected:
    void SetUp() override
    {
        desktop.showOnce(1);
        environment["FARVIEW_TEST_INPUT"] = display.folder();
        TouchedScreen::SetUp();
    }

    /// Puts the program's window on the monitor.
    void moveThere(const std::string& name)
    {
        ChildProcess mover({"xdotool", "search", "--sync", "--onlyvisible", "--class", name,
                            "windowmove", "1920", "0"});
        EXPECT_TRUE(mover.waitForEnd());
    }
    bool hears(InputWindow& window, const std::string& event)
    {
        return waitUntil([&] {
            std::ranges::move(window.takeEvents(), std::back_inserter(heard));
            return std::ranges::find(heard, event) != heard.end();
        });
    }

    PrivateXServer display;
    ScreenArranger desktop{display.display()};
    std::vector<std::string> heard;
};

TEST_F(TouchedScreenOnX11, TwoFingersZoomAProgram)
{
    if (!startThere({"eog", redSquare()}))
        GTEST_SKIP() << "eog is not installed";
    moveThere("eog");
    const auto before = seenRed();
    ASSERT_GT(before.width, 50) << serverLog() << deviceLog();
    spreadFingers(before.x + before.width / 2, before.y + before.height / 2);
    EXPECT_GT(seenRed().width, 2 * before.width) << serverLog() << deviceLog();
}

} // namespace
} // namespace farview
