#include "Platform/Desktop/Screens/X11/DesktopWindows.h"

#include "Platform/Desktop/Screens/X11/NamedMonitor.h"

#include <xcb/randr.h>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

/// More than anybody has open. In numbers of a property.
constexpr std::uint32_t mostNumbers = 4096;
constexpr const char* noteName = "_FARVIEW_WINDOW";

/// Numbers of the rules.
constexpr std::uint32_t gravityStatic = 10; // a place is that of what the program draws
constexpr std::uint32_t allOfThePlace = 0xF00;
constexpr std::uint32_t fromAPager = 2;

xcb_get_property_cookie_t askFor(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t name)
{
    return xcb_get_property(connection, 0, window, name, XCB_ATOM_ANY, 0, mostNumbers);
}

bool contains(const std::vector<std::uint32_t>& numbers, std::uint32_t number)
{
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

WindowMargins marginsOf(const std::vector<std::uint32_t>& numbers)
{
    constexpr std::uint32_t widest = 1000;
    if (numbers.size() != 4 || *std::max_element(numbers.begin(), numbers.end()) > widest)
        return {};
    const auto value = [&](std::size_t place) { return static_cast<int>(numbers[place]); };
    return {value(0), value(1), value(2), value(3)};
}

WindowMargins operator-(const WindowMargins& frame, const WindowMargins& shadow)
{
    return {frame.left - shadow.left, frame.right - shadow.right, frame.top - shadow.top,
            frame.bottom - shadow.bottom};
}

PixelRect common(const PixelRect& left, const PixelRect& right)
{
    const int x = std::max(left.x, right.x);
    const int y = std::max(left.y, right.y);
    return pixelRect(x, y, std::min(left.x + left.width, right.x + right.width) - x,
                     std::min(left.y + left.height, right.y + right.height) - y);
}

/// Without what panels take; all of it where that is not said sensibly.
PixelRect withoutPanels(const PixelRect& screen, const std::vector<std::uint32_t>& workArea)
{
    if (workArea.size() < 4)
        return screen;
    const auto value = [&](std::size_t place) { return static_cast<int>(workArea[place]); };
    const auto left = common(screen, pixelRect(value(0), value(1), value(2), value(3)));
    return left.width > screen.width / 2 && left.height > screen.height / 2 ? left : screen;
}

} // namespace

/// What is asked of all windows at once, so that one answer is waited for and not hundreds.
struct DesktopWindows::Questions {
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t corner;
    xcb_get_property_cookie_t types;
    xcb_get_property_cookie_t states;
    xcb_get_property_cookie_t frame;
    xcb_get_property_cookie_t shadow;
    xcb_get_property_cookie_t note;
};

DesktopWindows::DesktopWindows(RandrServer& server)
    : mServer(server), mAreManaged(!windowManagerName(server).empty())
{
}

std::vector<DesktopWindow> DesktopWindows::windows()
{
    auto* connection = mServer.connection();
    std::vector<std::pair<xcb_window_t, Questions>> asked;
    for (const xcb_window_t each : numbers(mServer.root(), "_NET_CLIENT_LIST")) {
        const auto property = [&](const char* name) {
            return askFor(connection, each, atom(name));
        };
        asked.push_back(
            {each,
             {xcb_get_geometry(connection, each),
              xcb_translate_coordinates(connection, each, mServer.root(), 0, 0),
              property("_NET_WM_WINDOW_TYPE"), property("_NET_WM_STATE"),
              property("_NET_FRAME_EXTENTS"), property("_GTK_FRAME_EXTENTS"), property(noteName)}});
    }
    std::vector<DesktopWindow> found;
    for (const auto& [window, questions] : asked) {
        if (auto answer = answered(window, questions))
            found.push_back(std::move(*answer));
    }
    return found;
}

/// Nothing for one that has vanished, or is not the user's to move. Every answer is taken.
std::optional<DesktopWindow> DesktopWindows::answered(xcb_window_t window,
                                                      const Questions& questions)
{
    auto* connection = mServer.connection();
    const XReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, questions.geometry, nullptr));
    const XReply<xcb_translate_coordinates_reply_t> corner(
        xcb_translate_coordinates_reply(connection, questions.corner, nullptr));
    const auto types = numbersOf(connection, questions.types);
    const auto states = numbersOf(connection, questions.states);
    const auto frame = marginsOf(numbersOf(connection, questions.frame));
    const auto shadow = marginsOf(numbersOf(connection, questions.shadow));
    const auto note = noteOf(numbersOf(connection, questions.note));
    if (!geometry || !corner || isFixture(types))
        return std::nullopt;
    const auto is = [&](const char* state) { return contains(states, atom(state)); };
    return DesktopWindow{window,
                         pixelRect(corner->dst_x, corner->dst_y, geometry->width, geometry->height),
                         frame - shadow,
                         {is("_NET_WM_STATE_MAXIMIZED_HORZ"), is("_NET_WM_STATE_MAXIMIZED_VERT"),
                          is("_NET_WM_STATE_FULLSCREEN")},
                         note};
}

bool DesktopWindows::isFixture(const std::vector<std::uint32_t>& types)
{
    return contains(types, atom("_NET_WM_WINDOW_TYPE_DOCK")) ||
           contains(types, atom("_NET_WM_WINDOW_TYPE_DESKTOP"));
}

std::vector<PixelRect> DesktopWindows::screens()
{
    auto* connection = mServer.connection();
    const XReply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
        connection, xcb_randr_get_monitors(connection, mServer.root(), 1), nullptr));
    if (!reply ||
        !holds(*reply, sizeof *reply + sizeof(xcb_randr_monitor_info_t) * reply->nMonitors +
                           sizeof(xcb_randr_output_t) * reply->nOutputs))
        return {};
    const auto workArea = numbers(mServer.root(), "_NET_WORKAREA");
    std::vector<PixelRect> found;
    auto each = xcb_randr_get_monitors_monitors_iterator(reply.get());
    for (; each.rem > 0; xcb_randr_monitor_info_next(&each)) {
        const auto& info = *each.data;
        const auto area = pixelRect(info.x, info.y, info.width, info.height);
        found.insert(info.primary != 0 ? found.begin() : found.end(),
                     withoutPanels(area, workArea));
    }
    return found;
}

bool DesktopWindows::isButtonHeld()
{
    auto* connection = mServer.connection();
    const XReply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        connection, xcb_query_pointer(connection, mServer.root()), nullptr));
    constexpr int buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
    return reply && (reply->mask & buttons) != 0;
}

std::uint32_t DesktopWindows::numberOf(const std::string& monitorName)
{
    return atom("_FARVIEW_MONITOR_" + monitorName);
}

void DesktopWindows::move(xcb_window_t window, const PixelRect& area)
{
    const auto number = [](int value) { return static_cast<std::uint32_t>(value); };
    send(window, "_NET_MOVERESIZE_WINDOW",
         {gravityStatic | allOfThePlace | fromAPager << 12, number(area.x), number(area.y),
          number(area.width), number(area.height)});
}

void DesktopWindows::stretch(xcb_window_t window, const WindowStretch& stretch, bool flag)
{
    const auto set = [&](std::uint32_t first, std::uint32_t second) {
        if (first != 0 || second != 0)
            send(window, "_NET_WM_STATE", {flag ? 1U : 0U, first, second, fromAPager});
    };
    // Both at once: Xfwm forgets the first of two that come one after the other.
    set(stretch.isWide ? atom("_NET_WM_STATE_MAXIMIZED_HORZ") : 0,
        stretch.isHigh ? atom("_NET_WM_STATE_MAXIMIZED_VERT") : 0);
    set(stretch.isFull ? atom("_NET_WM_STATE_FULLSCREEN") : 0, 0);
}

void DesktopWindows::writeNote(xcb_window_t window, const WindowNote& note)
{
    const auto numbers = noteNumbers(note);
    xcb_change_property(mServer.connection(), XCB_PROP_MODE_REPLACE, window, atom(noteName),
                        XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(numbers.size()),
                        numbers.data());
}

void DesktopWindows::removeNote(xcb_window_t window)
{
    xcb_delete_property(mServer.connection(), window, atom(noteName));
}

void DesktopWindows::finish()
{
    // Any question does.
    isButtonHeld();
}

xcb_atom_t DesktopWindows::atom(const std::string& name)
{
    const auto known = mAtoms.find(name);
    if (known != mAtoms.end())
        return known->second;
    return mAtoms[name] = atomNamed(mServer.connection(), name);
}

std::vector<std::uint32_t> DesktopWindows::numbers(xcb_window_t window, const std::string& name)
{
    return numbersOf(mServer.connection(), askFor(mServer.connection(), window, atom(name)));
}

void DesktopWindows::send(xcb_window_t window, const std::string& type,
                          std::vector<std::uint32_t> values)
{
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(type);
    std::copy(values.begin(), values.end(), std::begin(message.data.data32));
    xcb_send_event(mServer.connection(), 0, mServer.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
}

} // namespace farview
