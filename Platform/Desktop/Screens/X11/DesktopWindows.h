#pragma once

#include "Platform/Desktop/Screens/X11/RandrServer.h"
#include "Platform/Desktop/Screens/X11/WindowPlacing.h"

#include <map>
#include <string>

namespace farview
{

/// A window of a program, as its window manager has it now.
struct DesktopWindow {
    xcb_window_t id = 0;
    PixelRect area; ///< without its frame, on the root window
    WindowMargins frame;
    WindowStretch stretch;
    std::optional<WindowNote> note = {}; ///< that was written on it

    PixelRect outside() const { return framed(area, frame); }
};

/// The windows of an X server, through the rules that window managers have in common (EWMH).
/// Requests to move a window are messages to the window manager: it may refuse, and is not waited
/// for. Docks and the desktop itself are left out. One thread; waits for the server.
class DesktopWindows
{
public:
    explicit DesktopWindows(RandrServer& server);

    /// Whether a window manager runs that goes by the rules.
    bool areManaged() const { return mAreManaged; }
    /// All of them, also minimised ones and those of other workspaces.
    std::vector<DesktopWindow> windows();
    /// What the screens leave to windows, the main one first.
    std::vector<PixelRect> screens();
    bool isButtonHeld();
    /// The same for each monitor of that name.
    std::uint32_t numberOf(const std::string& monitorName);

    void move(xcb_window_t window, const PixelRect& area);
    void stretch(xcb_window_t window, const WindowStretch& stretch, bool flag);
    /// A note lives as long as its window, also over our death.
    void writeNote(xcb_window_t window, const WindowNote& note);
    void removeNote(xcb_window_t window);
    /// Waits until the server has all this: it may overlook what came just before the end of a
    /// connection.
    void finish();

private:
    struct Questions;

    xcb_atom_t atom(const std::string& name);
    std::vector<std::uint32_t> numbers(xcb_window_t window, const std::string& name);
    std::optional<DesktopWindow> answered(xcb_window_t window, const Questions& questions);
    bool isFixture(const std::vector<std::uint32_t>& types);
    void send(xcb_window_t window, const std::string& type, std::vector<std::uint32_t> values);

    RandrServer& mServer;
    bool mAreManaged;
    std::map<std::string, xcb_atom_t> mAtoms;
};

} // namespace farview
