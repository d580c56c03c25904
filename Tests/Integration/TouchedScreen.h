#pragma once

#include "Platform/Desktop/Screens/X11/DeviceInput.h"
#include "Tests/Integration/ServerAndDevice.h"
#include "Tests/Support/InputTestDevice.h"
#include "Tests/Support/PrivateXServer.h"

#include <algorithm>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace farview
{

inline constexpr RandrSize kGlass{1920, 1080};
/// How long a program of a desktop may take to show itself on a busy machine.
inline constexpr milliseconds kStart = seconds(30);

/// The device as a window over a display with a touch screen, and the server, whose monitor is as
/// large. Tests do what a user does there, and see what a user sees.
class TouchedScreen : public ServerAndDevice
{
protected:
    void SetUp() override
    {
        ServerAndDevice::SetUp();
        if (IsSkipped())
            return;
        preferences->setCurrentState(1);
        // As on computers with real keyboards.
        onGlass({"setxkbmap", "-rules", "evdev", "-layout", "us"});
        startWindow();
        startServer();
        connectByAddress();
        ASSERT_TRUE(waitUntil([&] { return panel->screen.state == ScreenReport::State::shown; }))
            << serverLog() << deviceLog();
    }

    void startWindow()
    {
        auto ofDevice = environment;
        ofDevice.insert({{"DISPLAY", glass.display()}, {"QT_QPA_PLATFORM", "xcb"}});
        std::swap(environment, ofDevice);
        device = start("farview-device", {"--name", "Desk", "--host-name", "desk-7"}, "device.log");
        std::swap(environment, ofDevice);
    }
    /// Starts a program on the server's desktop.
    void startThere(std::vector<std::string> command)
    {
        command.insert(command.begin(),
                       {"sh", "-c", "exec \"$0\" \"$@\" >'" + home.path("program.log") + "' 2>&1"});
        program = std::make_unique<ChildProcess>(command, environment);
    }
    /// A picture with a red square on white.
    std::string redSquare() const
    {
        const auto path = home.path("square.ppm");
        std::ofstream file(path);
        file << "P6 800 600 255\n";
        for (int y = 0; y < 600; ++y) {
            for (int x = 0; x < 800; ++x)
                file << (x / 200 == 1 && y / 200 == 1 ? "\xff\x01\x01" : "\xff\xff\xff");
        }
        return path;
    }

    void touch(int finger, TouchPhase phase, int x, int y)
    {
        TouchPoint point{};
        point.finger = finger;
        point.phase = phase;
        fingers->touch(point, devicePlace(x, y, kGlass));
    }
    void tap(int x, int y)
    {
        touch(0, TouchPhase::down, x, y);
        touch(0, TouchPhase::up, x, y);
    }
    /// Two fingers go away from each other.
    void spreadFingers(int x, int y)
    {
        const auto both = [&](TouchPhase phase, int distance) {
            touch(0, phase, x - distance, y);
            touch(1, phase, x + distance, y);
            runLoopFor(milliseconds(10));
        };
        both(TouchPhase::down, 40);
        for (int distance = 40; distance <= 200; distance += 8)
            both(TouchPhase::motion, distance);
        both(TouchPhase::up, 200);
    }
    void letType()
    {
        PairedPeers(*stored, PairedPeers::devices).letType("Desk", true);
        panel->post(kPairedDevicesDidChange);
    }
    /// Of the device, by a line for xdotool.
    void useMouseAndKeys(std::vector<std::string> line)
    {
        line.insert(line.begin(), "xdotool");
        onGlass(line);
    }
    void onGlass(const std::vector<std::string>& command)
    {
        ChildProcess tool(command, {{"DISPLAY", glass.display()}});
        EXPECT_TRUE(tool.waitForEnd());
    }
    /// What the device's display shows in red, clearly: around all of it.
    PixelRect redPart()
    {
        const auto pixels = eyes.pixels({0, 0, kGlass.width, kGlass.height});
        int left = kGlass.width, right = 0, top = kGlass.height, bottom = 0;
        for (int index = 0; index < kGlass.width * kGlass.height; ++index) {
            if ((pixels[static_cast<std::size_t>(index)] & 0xE0C0C0) != 0xE00000)
                continue;
            left = std::min(left, index % kGlass.width);
            right = std::max(right, index % kGlass.width + 1);
            top = std::min(top, index / kGlass.width);
            bottom = index / kGlass.width + 1;
        }
        return right == 0 ? PixelRect() : pixelRect(left, top, right - left, bottom - top);
    }
    bool isRedWiderThan(int width)
    {
        return waitUntil([&] { return redPart().width > width; }, kStart);
    }
    /// As it is when it has stopped changing.
    PixelRect seenRed()
    {
        PixelRect before;
        PixelRect now;
        const auto isStill = [&] {
            before = std::exchange(now, redPart());
            runLoopFor(milliseconds(200));
            return now.width > 0 && now == before;
        };
        waitUntil(isStill, kStart);
        return now;
    }

    PrivateXServer glass;
    ScreenArranger eyes{glass.display()};
    InputTestDevices touchScreen{glass.folder()};
    std::unique_ptr<InputDevices> fingers = touchScreen.maker()();
    std::unique_ptr<ChildProcess> program;
};

} // namespace farview
