#pragma once

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/Mutter/MutterVirtualScreens.h"
#include "Platform/Desktop/Screens/X11/InputDevices.h"
#include "Platform/Desktop/Screens/X11/X11VirtualScreens.h"
#include "Platform/Fake/FakeLog.h"
#include "Platform/Fake/FakeVirtualScreens.h"
#include "Tests/Support/PrivateGnome.h"
#include "Tests/Support/PrivateXServer.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <functional>
#include <sstream>
#include <string>

/// The desktops on which the contract of additional monitors is tried.
namespace farview
{

/// What a scene does to the monitor that was opened is in the monitor's coordinates.
struct ScriptedScreens {
    FakeRunLoop loop;
    FakeVirtualScreens body{loop};

    bool waitFor(const std::function<bool()>& condition)
    {
        loop.runUntilIdle();
        return condition();
    }
    void settle() { loop.runUntilIdle(); }
    FakeMonitor& monitor() { return *body.monitors().front(); }
    void draw(const ScreenGeometry&, const PixelRect& part, std::uint32_t colour)
    {
        monitor().paint(part, colour);
    }
    void setCursor(int side, std::uint32_t colour, int hotspot)
    {
        const auto pixels = static_cast<std::size_t>(side) * side;
        monitor().setCursor({side, side, pixelPoint(hotspot, hotspot),
                             std::vector<std::uint32_t>(pixels, 0xFF000000 | colour)});
    }
    void movePointer(const ScreenGeometry& geometry, int x, int y)
    {
        const bool isInside = x >= 0 && x < geometry.width;
        monitor().moveCursor(isInside ? std::optional(pixelPoint(x, y)) : std::nullopt);
    }
    void switchOff() { monitor().end(ScreenObstacle::takenAway); }
    void endDesktop() { monitor().end(ScreenObstacle::gone); }
    ScreenObstacle obstruct()
    {
        body.setObstacle(ScreenObstacle::noSpareOutput);
        return ScreenObstacle::noSpareOutput;
    }
};

struct ScreensOfAnXServer {
    PrivateXServer server;
    ScreenArranger arranger{server.display()};
    QtRunLoop loop;
    X11VirtualScreens body{loop, FARVIEW_MONITOR_WATCHER};

    bool waitFor(const std::function<bool()>& condition) { return waitUntil(condition); }
    void settle() { runLoopFor(std::chrono::milliseconds(50)); }
    void draw(const ScreenGeometry& geometry, const PixelRect& part, std::uint32_t colour)
    {
        arranger.fill({geometry.area.x + part.x, geometry.area.y + part.y, part.width, part.height},
                      0xAB000000 | colour);
    }
    void setCursor(int side, std::uint32_t colour, int hotspot)
    {
        arranger.setCursor(side, colour, hotspot);
    }
    void movePointer(const ScreenGeometry& geometry, int x, int y)
    {
        arranger.movePointer(geometry.area.x + x, geometry.area.y + y);
    }
    void switchOff() { arranger.hide(1); }
    void endDesktop() { server.process().kill(); }

    static constexpr auto way = ScreenWay::spareOutput;
    static constexpr const char* versionCommand = "Xorg -version 2>&1";
    static bool hasTheRight() { return mayMakeKernelDevices(); }
    void addWindowManager() { arranger.beWindowManager("Openbox"); }
    /// How large it all is, in words.
    std::string described()
    {
        std::ostringstream words;
        words << arranger.screen();
        return words.str();
    }
    ScreenObstacle obstruct()
    {
        for (std::size_t index = 1; index < arranger.outputs().size(); ++index)
            arranger.show(index, 0, 0);
        return ScreenObstacle::noSpareOutput;
    }
};

/// The same with every output in use.
struct ScreensOfAFullXServer : ScreensOfAnXServer {
    ScreensOfAFullXServer() { obstruct(); }

    static constexpr auto way = ScreenWay::namedMonitor;
};

struct ScreensOfGnome {
    PrivateGnome desktop;
    GnomeArranger arranger{desktop};
    QtRunLoop loop;
    FakeLog log;
    TestBus bus{log};
    MutterVirtualScreens body{loop, bus};

    bool waitFor(const std::function<bool()>& condition) { return waitUntil(condition); }
    void settle() { runLoopFor(std::chrono::milliseconds(50)); }
    void draw(const ScreenGeometry& geometry, const PixelRect& part, std::uint32_t colour)
    {
        arranger.fill(geometry.area.x + part.x, geometry.area.y + part.y, part.width, part.height,
                      colour);
    }
    void setCursor(int side, std::uint32_t colour, int hotspot)
    {
        arranger.setCursor(side, colour, hotspot);
    }
    void movePointer(const ScreenGeometry& geometry, int x, int y)
    {
        arranger.movePointer(geometry.area.x + x, geometry.area.y + y);
    }
    void endDesktop() { desktop.mutter().kill(); }

    static constexpr auto way = ScreenWay::gnome;
    static constexpr const char* versionCommand = "mutter --version";
    static bool hasTheRight() { return true; }
    void addWindowManager() {}
    std::string described() { return arranger.layout(); }
    ScreenObstacle obstruct()
    {
        endDesktop();
        return ScreenObstacle::protocolMissing;
    }
};

} // namespace farview
