#include "Tests/Support/PrivateWindows.h"

#include "Tests/Support/WaitUntil.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace
{

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply> using Answer = std::unique_ptr<Reply, Free>;

xcb_atom_t atomOf(xcb_connection_t* connection, const std::string& name)
{
    const Answer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    return reply ? reply->atom : 0;
}

std::vector<std::uint32_t> numbersOf(xcb_connection_t* connection, xcb_window_t window,
                                     const std::string& name)
{
    const Answer<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection,
        xcb_get_property(connection, 0, window, atomOf(connection, name), XCB_ATOM_ANY, 0, 1024),
        nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

bool isManaged()
{
    const std::unique_ptr<xcb_connection_t, Disconnect> connection(xcb_connect(nullptr, nullptr));
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data->root;
    return !numbersOf(connection.get(), root, "_NET_SUPPORTING_WM_CHECK").empty();
}

/// Without anything of the user's settings, and without the graphics processor.
ChildProcess::Environment environmentIn(const TemporaryFolder& folder, const PrivateBus& bus)
{
    return {{"HOME", folder.path()},
            {"XDG_RUNTIME_DIR", folder.path()},
            {"DBUS_SESSION_BUS_ADDRESS", bus.address()},
            {"XDG_CONFIG_HOME", folder.path("config")},
            {"XDG_CACHE_HOME", folder.path("cache")},
            {"GSETTINGS_BACKEND", "memory"},
            {"NO_AT_BRIDGE", "1"},
            {"KWIN_COMPOSE", "N"}};
}

std::uint32_t number(int value) { return static_cast<std::uint32_t>(value); }

} // namespace

PrivateWindowManager::PrivateWindowManager(const std::vector<std::string>& command)
    : mProcess(command, environmentIn(mFolder, mBus))
{
    if (!waitUntil(isManaged, std::chrono::seconds(30)))
        throw std::runtime_error("no window manager: " + command.back());
}

ProgramWindows::ProgramWindows() : mConnection(xcb_connect(nullptr, nullptr))
{
    if (xcb_connection_has_error(mConnection) != 0)
        throw std::runtime_error("no connection to the display");
    mRoot = xcb_setup_roots_iterator(xcb_get_setup(mConnection)).data->root;
}

ProgramWindows::~ProgramWindows() { xcb_disconnect(mConnection); }

xcb_window_t ProgramWindows::open(const Area& area, const std::string& type)
{
    const auto window = xcb_generate_id(mConnection);
    xcb_create_window(mConnection, 0, window, mRoot, static_cast<std::int16_t>(area.x),
                      static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(area.width),
                      static_cast<std::uint16_t>(area.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    // Place and size are the user's wish, and of the window without its frame.
    const std::array<std::uint32_t, 18> hints{1 | 2 | 512,
                                              number(area.x),
                                              number(area.y),
                                              number(area.width),
                                              number(area.height),
                                              0,
                                              0,
                                              0,
                                              0,
                                              0,
                                              0,
                                              0,
                                              0,
                                              0,
                                              0,
                                              0,
                                              0,
                                              XCB_GRAVITY_STATIC};
    xcb_change_property(mConnection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, hints.size(), hints.data());
    const auto typeAtom = atom("_NET_WM_WINDOW_TYPE_" + type);
    xcb_change_property(mConnection, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_WINDOW_TYPE"),
                        XCB_ATOM_ATOM, 32, 1, &typeAtom);
    const std::string name("window\0Window\0", 14);
    xcb_change_property(mConnection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS,
                        XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(name.size()), name.data());
    const bool isTaken = waitUntil([&] {
        // Openbox may overlook the first time, while it starts.
        xcb_map_window(mConnection, window);
        const auto all = numbers(mRoot, "_NET_CLIENT_LIST");
        return std::find(all.begin(), all.end(), window) != all.end();
    });
    if (!isTaken)
        throw std::runtime_error("no window manager took the window");
    return window;
}

void ProgramWindows::close(xcb_window_t window)
{
    xcb_destroy_window(mConnection, window);
    sync();
}

ProgramWindows::Area ProgramWindows::area(xcb_window_t window)
{
    const Answer<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(mConnection, xcb_get_geometry(mConnection, window), nullptr));
    const Answer<xcb_translate_coordinates_reply_t> corner(xcb_translate_coordinates_reply(
        mConnection, xcb_translate_coordinates(mConnection, window, mRoot, 0, 0), nullptr));
    if (!size || !corner)
        return {};
    return {corner->dst_x, corner->dst_y, size->width, size->height};
}

ProgramWindows::States ProgramWindows::states(xcb_window_t window)
{
    const auto found = numbers(window, "_NET_WM_STATE");
    States names;
    for (const auto* name :
         {"MAXIMIZED_HORZ", "MAXIMIZED_VERT", "FULLSCREEN", "HIDDEN", "SHADED", "STICKY"}) {
        if (std::find(found.begin(), found.end(), atom(std::string("_NET_WM_STATE_") + name)) !=
            found.end())
            names.insert(name);
    }
    return names;
}

std::uint32_t ProgramWindows::workspace(xcb_window_t window)
{
    const auto found = numbers(window, "_NET_WM_DESKTOP");
    return found.empty() ? 0 : found.front();
}

bool ProgramWindows::isScreenKnown()
{
    const auto screen = area(mRoot);
    return numbers(mRoot, "_NET_DESKTOP_GEOMETRY") ==
           std::vector{number(screen.width), number(screen.height)};
}

bool ProgramWindows::hasNote(xcb_window_t window)
{
    return !numbers(window, "_FARVIEW_WINDOW").empty();
}

void ProgramWindows::place(xcb_window_t window, const Area& area)
{
    constexpr std::uint32_t allOfItByAPagerWithStaticGravity = 0x2F0A;
    send(window, "_NET_MOVERESIZE_WINDOW",
         {allOfItByAPagerWithStaticGravity, number(area.x), number(area.y), number(area.width),
          number(area.height)});
}

void ProgramWindows::setStates(xcb_window_t window, const States& states, bool flag)
{
    const auto second = std::next(states.begin());
    send(window, "_NET_WM_STATE",
         {flag ? 1U : 0U, atom("_NET_WM_STATE_" + *states.begin()),
          second == states.end() ? 0 : atom("_NET_WM_STATE_" + *second), 2});
}

void ProgramWindows::minimise(xcb_window_t window)
{
    constexpr std::uint32_t iconic = 3;
    send(window, "WM_CHANGE_STATE", {iconic});
}

void ProgramWindows::sendToWorkspace(xcb_window_t window, std::uint32_t number)
{
    send(mRoot, "_NET_NUMBER_OF_DESKTOPS", {4});
    send(window, "_NET_WM_DESKTOP", {number, 2});
}

void ProgramWindows::pressButton(bool flag)
{
    std::free(xcb_request_check(
        mConnection,
        xcb_test_fake_input_checked(mConnection, flag ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, 1,
                                    XCB_CURRENT_TIME, mRoot, 0, 0, 0)));
}

void ProgramWindows::moveItself(xcb_window_t window, const Area& area)
{
    const std::array<std::uint32_t, 4> values{number(area.x), number(area.y), number(area.width),
                                              number(area.height)};
    xcb_configure_window(mConnection, window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    sync();
}

xcb_atom_t ProgramWindows::atom(const std::string& name) { return atomOf(mConnection, name); }

std::vector<std::uint32_t> ProgramWindows::numbers(xcb_window_t window, const std::string& name)
{
    return numbersOf(mConnection, window, name);
}

void ProgramWindows::send(xcb_window_t window, const std::string& type,
                          std::vector<std::uint32_t> values)
{
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(type);
    std::copy(values.begin(), values.end(), std::begin(message.data.data32));
    xcb_send_event(mConnection, 0, mRoot,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    sync();
}

void ProgramWindows::sync()
{
    const Answer<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(mConnection, xcb_get_input_focus(mConnection), nullptr));
}
