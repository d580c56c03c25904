// The real screen server on a real GNOME without hardware.

#include "Common/FVEConstants.h"
#include "Common/Rules/DeviceScreen.h"
#include "Common/Rules/ScreenReport.h"
#include "Tests/Integration/ServerAndDevice.h"
#include "Tests/Integration/Tablet.h"
#include "Tests/Support/PrivateGnome.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace farview
{
namespace
{

using State = ScreenReport::State;

class AScreenOnGnome : public ServerAndDevice
{
protected:
    AScreenOnGnome()
    {
        environment["DBUS_SESSION_BUS_ADDRESS"] = gnome.bus().address();
        environment["DBUS_SYSTEM_BUS_ADDRESS"] = gnome.bus().address();
        environment["XDG_RUNTIME_DIR"] = std::getenv("XDG_RUNTIME_DIR");
    }
    void SetUp() override
    {
        ServerAndDevice::SetUp();
        if (IsSkipped())
            return;
        preferences->setCurrentState(1);
        panel->center().addObserver(
            life,
            [this](const Notification& heard) {
                report = screenReport(heard.text(kScreenReportKey));
            },
            kServerScreenDidChange, "");
        before = desktop.layout();
        ASSERT_TRUE(tablet->listen());
    }
    void showMonitor()
    {
        startServer();
        panel->connectToAddress("127.0.0.1");
        ASSERT_TRUE(waitUntil([&] { return report.state == State::shown; })) << serverLog();
    }
    bool isAsBefore()
    {
        return waitUntil([&] { return desktop.layout() == before; });
    }

    PrivateGnome gnome;
    GnomeArranger desktop{gnome};
    std::string before;
    std::shared_ptr<int> life = std::make_shared<int>();
    ScreenReport report;
    std::shared_ptr<Tablet> tablet = std::make_shared<Tablet>();
};

TEST_F(AScreenOnGnome, IsOnTheDeviceBitForBit)
{
    showMonitor();
    EXPECT_EQ(report.monitor, pixelRect(1920, 0, 800, 600));
    EXPECT_THAT(report.screens, testing::ElementsAre(pixelRect(0, 0, 1920, 1080)));
    Picture expected(800, 600);
    std::uint32_t colour = 0x00010203;
    for (int y = 0; y < 600; y += 100) {
        for (int x = 0; x < 800; x += 100) {
            colour = (colour * 1664525U + 1013904223U) & 0x00ffffff;
            desktop.fill(1920 + x, y, 100, 100, colour);
            for (int row = y; row < y + 100; ++row)
                std::fill_n(expected.row(row) + x, 100, colour);
        }
    }
    const auto whole = pixelRect(0, 0, 800, 600);
    EXPECT_TRUE(waitUntil([&] {
        return tablet->receiver &&
               isSame(tablet->receiver->picture().view(), expected.view(), whole);
    })) << serverLog();
}

TEST_F(AScreenOnGnome, StandsWhereTheUserWantsItAndFollowsTheDevice)
{
    showMonitor();
    preferences->setDeviceScreen("127.0.0.1", storedScreen({.side = ScreenSide::below}));
    EXPECT_TRUE(waitUntil([&] { return report.monitor.y == 1080; })) << serverLog();
    tablet->send(LinkDeviceScreen{1024, 768, 100, 60});
    EXPECT_TRUE(waitUntil([&] { return report.width == 1024 && report.monitor.y == 1080; }))
        << serverLog() << textOfScreenReport(report) << "\n"
        << desktop.layout();
}

TEST_F(AScreenOnGnome, GoesWithTheConnection)
{
    showMonitor();
    panel->post(kDisconnectCurrentServerFromHost);
    EXPECT_TRUE(isAsBefore());
}

TEST_F(AScreenOnGnome, GoesWhenTheServerIsKilled)
{
    showMonitor();
    preferences->setCurrentState(0);
    for (const auto& each : processesBelow(server->pid()))
        ::kill(each.pid, SIGKILL);
    EXPECT_TRUE(isAsBefore());
}

TEST_F(AScreenOnGnome, IsMissedInWordsWhenPipeWireEnds)
{
    showMonitor();
    gnome.pipeWire().kill();
    EXPECT_TRUE(waitUntil([&] { return report.state == State::missing; })) << serverLog();
    EXPECT_FALSE(tablet->ended) << "the device stays connected";
}

} // namespace
} // namespace farview
