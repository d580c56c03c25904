#pragma once

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/TemporaryFolder.h"

#include <cstdint>
#include <ios>
#include <memory>
#include <string>
#include <vector>

/// Another program on the Wayland desktop of this process, which paints on its monitors and tells
/// of the input that it gets.
class ScreenPainter
{
public:
    ScreenPainter();
    ~ScreenPainter();
    ScreenPainter(const ScreenPainter&) = delete;
    ScreenPainter& operator=(const ScreenPainter&) = delete;

    /// Draws on a window that covers the monitor there; its rest is black.
    void fill(int x, int y, int width, int height, std::uint32_t colour);
    /// Covers a monitor with a new window, as soon as the monitor is like that, its size
    /// in the desktop's units.
    void cover(const std::string& monitor, int width, int height, double scale,
               std::uint32_t colour);
    /// A square of one colour in the place of the pointer, over windows that `fill` has made.
    void setCursor(int side, std::uint32_t colour, int hotspot);
    /// Opens an ordinary window.
    void openWindow(const std::string& title, int width, int height);
    /// What those windows got since this was asked last, in words, such as
    /// "Meta-2 finger 0 down 100,200"; places in the monitor's pixels.
    std::vector<std::string> takeInput();

private:
    void say(const std::string& line);

    int mCommands = -1;
    TemporaryFolder mFolder;
    std::streamoff mTaken = 0;
    std::unique_ptr<ChildProcess> mPainter;
};
