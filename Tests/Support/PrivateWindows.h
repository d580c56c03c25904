#pragma once

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/PrivateXServer.h"
#include "Tests/Support/TemporaryFolder.h"

#include <xcb/xcb.h>

#include <set>
#include <string>
#include <vector>

/// A window manager on the display of this process, with a session bus of its own. Ends with the
/// object.
class PrivateWindowManager
{
public:
    /// Starts it and waits until it manages windows.
    explicit PrivateWindowManager(const std::vector<std::string>& command);

    ChildProcess& process() { return mProcess; }

private:
    TemporaryFolder mFolder;
    PrivateBus mBus;
    ChildProcess mProcess;
};

/// A program on the display of this process that has windows, and its user. Waits for the answers
/// of the server, and until a window manager has taken a new window.
class ProgramWindows
{
public:
    using Area = ScreenArranger::Area;
    using States = std::set<std::string>;

    ProgramWindows();
    ~ProgramWindows();
    ProgramWindows(const ProgramWindows&) = delete;
    ProgramWindows& operator=(const ProgramWindows&) = delete;

    /// `type` as in _NET_WM_WINDOW_TYPE_*.
    xcb_window_t open(const Area& area, const std::string& type = "NORMAL");
    void close(xcb_window_t window);
    /// What the program draws, without the frame.
    Area area(xcb_window_t window);
    /// As in _NET_WM_STATE_*: those of MAXIMIZED_HORZ, MAXIMIZED_VERT, FULLSCREEN, HIDDEN, SHADED
    /// and STICKY that it has.
    States states(xcb_window_t window);
    std::uint32_t workspace(xcb_window_t window);
    /// Whether the window manager knows how large the screen is now. One that does not yet know a
    /// new monitor lets a window go there, and takes it back later.
    bool isScreenKnown();
    /// Whether something of ours is written on it.
    bool hasNote(xcb_window_t window);

    /// What its user has the window manager do.
    void place(xcb_window_t window, const Area& area);
    /// One or two of them.
    void setStates(xcb_window_t window, const States& states, bool flag = true);
    void minimise(xcb_window_t window);
    /// One of four.
    void sendToWorkspace(xcb_window_t window, std::uint32_t number);
    void pressButton(bool flag);
    /// What its program does.
    void moveItself(xcb_window_t window, const Area& area);

private:
    xcb_atom_t atom(const std::string& name);
    std::vector<std::uint32_t> numbers(xcb_window_t window, const std::string& name);
    void send(xcb_window_t window, const std::string& type, std::vector<std::uint32_t> values);
    void sync();

    xcb_connection_t* mConnection;
    xcb_window_t mRoot = 0;
};
