// The real screen server on a real X server: a monitor for a device, its picture, and its end in
// every way. The device is the test's own, so that it can misbehave.

#include "Common/Rules/DeviceScreen.h"
#include "Common/Rules/ScreenReport.h"
#include "Tests/Integration/ServerAndDevice.h"
#include "Tests/Integration/Tablet.h"
#include "Tests/Support/PrivateXServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <optional>

namespace farview
{
namespace
{

using testing::HasSubstr;
using State = ScreenReport::State;

class AScreen : public ServerAndDevice
{
protected:
    void SetUp() override
    {
        ServerAndDevice::SetUp();
        if (IsSkipped())
            return;
        desktop.showOnce(1);
        before = describedScreens(display.display());
        preferences->setCurrentState(1);
        panel->center().addObserver(
            life,
            [this](const Notification& heard) { report = screenReport(heard.text("Screen")); },
            kServerScreenDidChange, "");
        ASSERT_TRUE(tablet->listen());
    }

    void connectTablet()
    {
        startServer();
        panel->connectToAddress("127.0.0.1");
        ASSERT_TRUE(panel->hears(kServerConnectedToDevice)) << serverLog();
    }
    void showMonitor()
    {
        connectTablet();
        ASSERT_TRUE(reports(State::shown)) << serverLog();
    }
    bool reports(State state)
    {
        return waitUntil([&] { return report.state == state; });
    }
    bool isAsBefore()
    {
        return waitUntil([&] { return describedScreens(display.display()) == before; });
    }
    /// Paints where the monitor is.
    void paint(int x, int y, int width, int height, std::uint32_t colour)
    {
        desktop.fill({report.monitor.x + x, report.monitor.y + y, width, height}, colour);
    }
    bool shows(int x, int y, std::uint32_t colour)
    {
        return waitUntil([&] { return tablet->pixel(x, y) == colour; });
    }

    PrivateXServer display;
    ScreenArranger desktop{display.display()};
    std::string before;
    std::shared_ptr<int> life = std::make_shared<int>();
    ScreenReport report;
    std::shared_ptr<Tablet> tablet = std::make_shared<Tablet>();
};

TEST_F(AScreen, AppearsBesideTheUsersOwnWithTheDevicesSize)
{
    showMonitor();
    EXPECT_EQ(report.width, 800);
    EXPECT_EQ(report.height, 600);
    EXPECT_EQ(report.monitor, pixelRect(1920, 0, 800, 600));
    EXPECT_THAT(report.screens, testing::ElementsAre(pixelRect(0, 0, 1920, 1080)));
}

TEST_F(AScreen, IsOnTheDeviceBitForBit)
{
    showMonitor();
    Picture expected(800, 600);
    std::uint32_t colour = 0x00010203;
    for (int y = 0; y < 600; y += 30) {
        for (int x = 0; x < 800; x += 40) {
            colour = (colour * 1664525U + 1013904223U) & 0x00ffffff;
            paint(x, y, 40, 30, colour);
            for (int row = y; row < y + 30; ++row)
                std::fill_n(expected.row(row) + x, 40, colour);
        }
    }
    const auto whole = pixelRect(0, 0, 800, 600);
    EXPECT_TRUE(waitUntil([&] {
        return tablet->receiver &&
               isSame(tablet->receiver->picture().view(), expected.view(), whole);
    })) << serverLog();
}

TEST_F(AScreen, IsShownByTheRealDevice)
{
    tablet->vanish();
    startDevice({"--picture-file", home.path("picture.ppm")});
    startServer();
    connectByAddress();
    ASSERT_TRUE(reports(State::shown)) << serverLog() << deviceLog();
    EXPECT_EQ(report.monitor, pixelRect(1920, 0, 1920, 1080)) << "as large as it says it is";
    paint(0, 0, 1920, 1080, 0x00123456);
    paint(700, 500, 200, 100, 0x00fedcba);
    EXPECT_TRUE(waitUntil([&] {
        const std::string file = text("picture.ppm");
        const std::size_t size = 3 * 1920 * 1080;
        const auto colour = [&](std::size_t x, std::size_t y) {
            return file.substr(file.size() - size + 3 * (1920 * y + x), 3);
        };
        return file.size() > size && colour(799, 599) == "\xfe\xdc\xba" &&
               colour(699, 499) == "\x12\x34\x56";
    })) << serverLog()
        << deviceLog();
}

TEST_F(AScreen, BringsThePointerAlong)
{
    showMonitor();
    desktop.setCursor(16, 0xff00ff00, 4);
    desktop.movePointer(1920 + 300, 200);
    ASSERT_TRUE(waitUntil([&] {
        return tablet->receiver && tablet->receiver->cursor() &&
               tablet->receiver->cursorPlace() == pixelPoint(300, 200);
    })) << serverLog();
    EXPECT_EQ(tablet->receiver->cursor()->hotspot, pixelPoint(4, 4));
    desktop.movePointer(100, 200);
    EXPECT_TRUE(waitUntil([&] { return !tablet->receiver->cursor(); }));
}

TEST_F(AScreen, GoesWhenTheUserWantsNoDevice)
{
    showMonitor();
    panel->post(kDisconnectCurrentServerFromHost);
    EXPECT_TRUE(isAsBefore());
    EXPECT_TRUE(reports(State::possible)) << "what is known before the next one";
}

TEST_F(AScreen, GoesWithADeviceThatIsLost)
{
    showMonitor();
    tablet->vanish();
    EXPECT_TRUE(isAsBefore());
}

TEST_F(AScreen, GoesWithTheServer)
{
    showMonitor();
    panel->post(kTerminateScreenServer);
    EXPECT_TRUE(serverEnded());
    EXPECT_EQ(describedScreens(display.display()), before);
}

TEST_F(AScreen, GoesWithASessionThatEnds)
{
    showMonitor();
    server->sendSignal(SIGTERM);
    EXPECT_TRUE(serverEnded());
    EXPECT_EQ(describedScreens(display.display()), before);
}

TEST_F(AScreen, GoesWhereverTheServerIsKilled)
{
    startServer();
    for (int step = 0; step < 12; ++step) {
        panel->connectToAddress("127.0.0.1");
        // From the request over the monitor's birth to frames on their way.
        runLoopFor(milliseconds(7 * step));
        killServer();
        EXPECT_TRUE(isAsBefore()) << "killed in step " << step;
        server->kill();
        if (step < 11)
            startServer();
    }
}

TEST_F(AScreen, ComesBackWhenOnlyTheServersWorkerCrashed)
{
    showMonitor();
    for (const auto& each : processesBelow(server->pid()))
        ::kill(each.pid, SIGKILL);
    ASSERT_TRUE(waitUntil([&] { return tablet->ended.has_value(); }));
    tablet->receiver.reset();
    EXPECT_TRUE(waitUntil([&] { return tablet->receiver && report.state == State::shown; }))
        << serverLog();
    paint(0, 0, 50, 50, 0x00abcdef);
    EXPECT_TRUE(shows(10, 10, 0x00abcdef));
}

TEST_F(AScreen, FollowsTheDeviceAndTheUser)
{
    showMonitor();
    tablet->send(LinkDeviceScreen{600, 800, 100, 60});
    ASSERT_TRUE(waitUntil([&] { return report.width == 600; })) << serverLog();
    paint(590, 790, 10, 10, 0x00112233);
    EXPECT_TRUE(shows(595, 795, 0x00112233));
    preferences->setDeviceScreen("127.0.0.1", storedScreen({.side = ScreenSide::below}));
    EXPECT_TRUE(waitUntil([&] { return report.monitor.y == 1080; })) << serverLog();
}

TEST_F(AScreen, WaitsForADeviceThatShowsNothingAndKeepsTheConnection)
{
    tablet->isSilent = true;
    showMonitor();
    for (std::uint32_t colour = 1; colour <= 60; ++colour) {
        paint(0, 0, 400, 400, colour);
        runLoopFor(milliseconds(100));
    }
    EXPECT_EQ(tablet->frames, 2U);
    EXPECT_FALSE(tablet->ended) << tablet->ended->text;
    EXPECT_EQ(panel->last(kServerDisconnectedFromDevice), nullptr) << serverLog();
    tablet->isSilent = false;
    tablet->send(LinkShown{2, 1000});
    EXPECT_TRUE(shows(10, 10, 60)) << "the newest";
}

TEST_F(AScreen, LeavesADeviceThatShowedWhatItWasNotSent)
{
    showMonitor();
    tablet->send(LinkShown{4711, 1000});
    EXPECT_TRUE(waitUntil([&] { return tablet->ended.has_value(); }));
    EXPECT_TRUE(isAsBefore());
}

TEST_F(AScreen, OutlivesADeviceThatChangesItsSizeAllTheTime)
{
    showMonitor();
    for (std::uint16_t round = 0; round < 100; ++round) {
        tablet->send(LinkDeviceScreen{static_cast<std::uint16_t>(round % 2 ? 1 : 640 + round), 480,
                                      100, 60});
        runLoopFor(milliseconds(20));
    }
    tablet->send(LinkDeviceScreen{720, 480, 100, 60});
    EXPECT_TRUE(waitUntil([&] { return report.width == 720; })) << serverLog();
    paint(700, 400, 20, 20, 0x00fedcba);
    EXPECT_TRUE(shows(710, 410, 0x00fedcba));
}

TEST_F(AScreen, OfADeviceThatIsTooLargeIsMissedInWords)
{
    tablet->screen = {16384, 16384, 100, 60};
    connectTablet();
    ASSERT_TRUE(reports(State::missing));
    EXPECT_EQ(report.obstacle, ScreenObstacle::tooLarge);
    EXPECT_TRUE(isAsBefore());
}

TEST_F(AScreen, StaysWhileOthersArrangeTheirs)
{
    showMonitor();
    desktop.setScreenSize(2720, 2160);
    desktop.show(2, 0, 1080);
    ASSERT_TRUE(waitUntil([&] { return report.screens.size() == 2; })) << serverLog();
    paint(5, 5, 30, 30, 0x00334455);
    EXPECT_TRUE(shows(10, 10, 0x00334455));
    desktop.hide(2);
    EXPECT_TRUE(waitUntil([&] { return report.screens.size() == 1; }));
}

TEST_F(AScreen, IsMissedInWordsWhenTheDesktopEnds)
{
    showMonitor();
    display.process().kill();
    EXPECT_TRUE(reports(State::missing)) << serverLog();
    EXPECT_EQ(report.obstacle, ScreenObstacle::gone);
    EXPECT_FALSE(tablet->ended) << "the device stays connected";
}

} // namespace
} // namespace farview
