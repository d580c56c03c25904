// Two devices of one computer at once, each a process with a monitor of its own.

#include "Tests/Integration/ServerAndDevice.h"
#include "Tests/Support/PrivateXServer.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using State = ScreenReport::State;

class TwoDevices : public ServerAndDevice
{
protected:
    void SetUp() override
    {
        ServerAndDevice::SetUp();
        if (IsSkipped())
            return;
        desktop.showOnce(1);
        desktop.showOnce(2);
        before = describedScreens(display.display());
        preferences->setCurrentState(1);
        for (const std::string name : {"Desk", "Sofa"})
            startNamed(name, {"--picture-file", home.path(name + ".ppm")});
        startServer();
        panel->connectTo("desk-7.local");
        panel->post(kAlsoConnectToHost, {{kConnectToHostNameKey, "sofa-7.local"}});
        ASSERT_TRUE(waitUntil([&] {
            return panel->screen.state == State::shown && sofa().state == State::shown;
        })) << everything();
    }

    ScreenReport sofa() const
    {
        return panel->further.empty() ? ScreenReport() : panel->further.front().screen;
    }
    void paint(const PixelRect& monitor, std::uint32_t colour)
    {
        desktop.fill({monitor.x, monitor.y, monitor.width, monitor.height}, colour);
    }
    /// The three colours of the pixel in the middle.
    bool shows(const std::string& name, const std::string& colours) const
    {
        return waitUntil([&] {
            const std::string file = text(name + ".ppm");
            const std::size_t fromEnd = 3 * (1920 * 540 - 960);
            return file.size() > fromEnd && file.substr(file.size() - fromEnd, 3) == colours;
        });
    }

    PrivateXServer display;
    ScreenArranger desktop{display.display()};
    std::string before;
};

TEST_F(TwoDevices, ShowTheirOwnMonitors)
{
    EXPECT_EQ(panel->screen.monitor, pixelRect(1920, 0, 1920, 1080));
    EXPECT_EQ(sofa().monitor, pixelRect(3840, 0, 1920, 1080));
    paint(panel->screen.monitor, 0x00123456);
    paint(sofa().monitor, 0x00fedcba);
    EXPECT_TRUE(shows("Desk", "\x12\x34\x56")) << everything();
    EXPECT_TRUE(shows("Sofa", "\xfe\xdc\xba")) << everything();
}

TEST_F(TwoDevices, TheFirstStaysWhenTheSecondDies)
{
    devices["Sofa"]->kill();
    EXPECT_TRUE(waitUntil([&] { return sofa().state != State::shown; })) << everything();
    paint(panel->screen.monitor, 0x00123456);
    EXPECT_TRUE(shows("Desk", "\x12\x34\x56")) << everything();
    EXPECT_EQ(panel->last(kServerDisconnectedFromDevice), nullptr);
}

TEST_F(TwoDevices, TheSecondStaysWhenTheFirstDies)
{
    devices["Desk"]->kill();
    EXPECT_TRUE(panel->hears(kServerDisconnectedFromDevice)) << everything();
    paint(sofa().monitor, 0x00fedcba);
    EXPECT_TRUE(shows("Sofa", "\xfe\xdc\xba")) << everything();
    ASSERT_EQ(panel->further.size(), 1U);
    EXPECT_EQ(panel->further.front().state, FurtherDevice::State::connected);
}

TEST_F(TwoDevices, LeaveEverythingAsItWasWhenTheServerIsKilled)
{
    killServer();
    EXPECT_TRUE(waitUntil([&] { return describedScreens(display.display()) == before; }))
        << before << describedScreens(display.display());
    EXPECT_TRUE(says("Sofa", "The host is gone")) << everything();
}

} // namespace
} // namespace farview
