#include "Platform/Desktop/Screens/KWin/WindowMove.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/KWin/KWinInput.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivatePlasma.h"
#include "Tests/Support/ScreenPainter.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>
#include <wayland-client.h>
#include <wayland-protocols/kde-output-device-v2.h>
#include <wayland-protocols/kde-output-management-v2.h>

#include <algorithm>

namespace farview
{
namespace
{

/// Two outputs of KWin's, the second one with a window that covers it.
class KWinWindowsTest : public testing::Test
{
protected:
    KWinWindowsTest()
    {
        EXPECT_TRUE(waitUntil([this] { return mIsReady; }));
        mPainter.cover("Virtual-1", 1280, 720, 1, 0x203040);
        EXPECT_TRUE(isOn(right));
    }
    /// Whether it comes to get what is touched there.
    bool isOn(PixelPoint corner)
    {
        mInput.setMonitor({pixelRect(corner.x, corner.y, 1280, 720), 1280, 720});
        return waitUntil([this] {
            for (const auto phase : {TouchPhase::down, TouchPhase::up})
                mInput.touch({.phase = phase, .place = {.x = 50, .y = 60}});
            runLoopFor(std::chrono::milliseconds(100));
            const auto lines = mPainter.takeInput();
            return std::ranges::find(lines, "Virtual-1 finger down 50,60") != lines.end();
        });
    }
    /// As the user does it in the settings.
    void switchRight(bool isOn)
    {
        const auto bind = [this]<typename Proxy>(const WaylandGlobal& global,
                                                 const wl_interface& interface, Proxy*) {
            return mConnection.bind<Proxy>(global, interface, 2);
        };
        const auto& globals = mConnection.globals();
        const auto last = std::find_if(globals.rbegin(), globals.rend(), [](const auto& global) {
            return global.interface == kde_output_device_v2_interface.name;
        });
        auto* device = bind(*last, kde_output_device_v2_interface,
                            static_cast<kde_output_device_v2*>(nullptr));
        auto* management = bind(*mConnection.find(kde_output_management_v2_interface),
                                kde_output_management_v2_interface,
                                static_cast<kde_output_management_v2*>(nullptr));
        auto* wanted = kde_output_management_v2_create_configuration(management);
        kde_output_configuration_v2_enable(wanted, device, isOn);
        kde_output_configuration_v2_apply(wanted);
        kde_output_configuration_v2_destroy(wanted);
        kde_output_management_v2_destroy(management);
        kde_output_device_v2_destroy(device);
    }

    const PixelPoint left = pixelPoint(0, 0);
    const PixelPoint right = pixelPoint(1280, 0);
    PrivatePlasma mDesktop;
    FakeLog mLog;
    TestBus mBus{mLog};
    QtRunLoop mLoop;
    bool mIsReady = false;
    WaylandConnection mConnection{{.ready =
                                       [this] {
                                           mInput.makeDevices(mConnection, mBus);
                                           mConnection.afterAll([this] { mIsReady = true; });
                                       },
                                   .lost = [] {}}};
    KWinInput mInput{0};
    ScreenPainter mPainter;
};

TEST_F(KWinWindowsTest, GoToAnotherOutputAndKWinForgetsTheScript)
{
    for (const auto& [from, to] : {std::pair(right, left), std::pair(left, right)}) {
        bool isDone = false;
        const auto move = std::make_shared<WindowMove>(mLoop, mBus, [&] { isDone = true; });
        move->begin(from, to);
        EXPECT_TRUE(waitUntil([&] { return isDone; }));
        EXPECT_TRUE(isOn(to));
    }
}

TEST_F(KWinWindowsTest, StayWhenNoOutputIsThere)
{
    bool isDone = false;
    const auto move = std::make_shared<WindowMove>(mLoop, mBus, [&] { isDone = true; });
    move->begin(right, pixelPoint(7, 7));
    EXPECT_TRUE(waitUntil([&] { return isDone; }));
    EXPECT_TRUE(isOn(right));
}

TEST_F(KWinWindowsTest, AreTakenCareOfByKWinWhenTheirOutputGoesAndReturns)
{
    switchRight(false);
    EXPECT_TRUE(isOn(left));
    switchRight(true);
    EXPECT_TRUE(isOn(right));
}

} // namespace
} // namespace farview
