#pragma once

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/TemporaryFolder.h"

#include <xcb/randr.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

/// A real X server with 16 outputs and no hardware, of which the first shows 1920x1080. Ends with
/// the object. For its length it is the display of this process, too.
class PrivateXServer
{
public:
    /// Starts it and waits until it accepts connections.
    PrivateXServer();
    ~PrivateXServer();
    PrivateXServer(const PrivateXServer&) = delete;
    PrivateXServer& operator=(const PrivateXServer&) = delete;

    const std::string& display() const { return mDisplay; }
    ChildProcess& process() { return *mServer; }
    /// Where its configuration is, and the sockets of its touch screen and its pen.
    std::string folder() const { return mFolder.path(); }

private:
    TemporaryFolder mFolder;
    std::unique_ptr<ChildProcess> mServer;
    std::string mDisplay;
    std::unique_ptr<ScopedEnvironment> mVariable;
    ScopedEnvironment mWayland{"WAYLAND_DISPLAY", nullptr};
};

/// Everything that a server says of its screens, in words: which outputs there are, what they show,
/// in which modes, how large it all is, and whether a monitor of ours is written down there.
std::string describedScreens(const std::string& display);

/// Another program on that server, which arranges its outputs as tests want them. It waits for
/// every answer.
class ScreenArranger
{
public:
    struct Area {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;

        bool operator==(const Area&) const = default;
        friend std::ostream& operator<<(std::ostream& out, const Area& area)
        {
            return out << area.width << "x" << area.height << "+" << area.x << "+" << area.y;
        }
    };

    explicit ScreenArranger(const std::string& display);
    ~ScreenArranger();
    ScreenArranger(const ScreenArranger&) = delete;
    ScreenArranger& operator=(const ScreenArranger&) = delete;

    const std::vector<xcb_randr_output_t>& outputs() const { return mOutputs; }
    /// Makes the output of that index show a part of the screen as large as what the first one
    /// shows. Throws when the server refuses.
    void show(std::size_t index, int x, int y);
    void hide(std::size_t index);
    /// Switches it on beside the first one and off again: the driver counts an output as connected
    /// from the first time that it was on.
    void showOnce(std::size_t index);
    void makePrimary(std::size_t index);
    void setScreenSize(int width, int height);

    /// Says, as a window manager does, that one of that name runs.
    void beWindowManager(const std::string& name);
    /// Draws on the root window.
    void fill(const Area& area, std::uint32_t colour);
    /// What is seen there, row by row.
    std::vector<std::uint32_t> pixels(const Area& area);
    /// A square of one colour in the place of the pointer, while it is over the root window.
    void setCursor(int side, std::uint32_t colour, int hotspot);
    /// As a mouse would.
    void movePointer(int x, int y);

    /// What the output shows; empty when it is off.
    Area area(std::size_t index);
    Area screen();

private:
    xcb_randr_crtc_t crtcOf(std::size_t index);
    void configure(xcb_randr_crtc_t crtc, int x, int y, xcb_randr_mode_t mode,
                   std::vector<xcb_randr_output_t> outputs);

    xcb_connection_t* mConnection;
    xcb_window_t mRoot = 0;
    std::vector<xcb_randr_output_t> mOutputs;
    xcb_randr_mode_t mMode = 0;
};
