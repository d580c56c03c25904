#include "Platform/Desktop/Screens/X11/NamedMonitor.h"

#include <sys/uio.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>

#include <array>
#include <string_view>

namespace farview
{
namespace
{

/// Nobody has names longer than that.
constexpr std::uint32_t longestName = 64; // in words of four bytes

/// The bytes of a property; empty when there is none of that width.
std::string property(xcb_connection_t* connection, xcb_window_t window, std::string_view name,
                     int width)
{
    const auto cookie = xcb_get_property(connection, 0, window, atomNamed(connection, name),
                                         XCB_ATOM_ANY, 0, longestName);
    const XReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != width)
        return {};
    const std::size_t size = std::size_t{reply->value_len} * reply->format / 8;
    if (!holds(*reply, sizeof *reply + size))
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), size};
}

/// As it travels. The library's own function sends memory that it never set.
struct SetMonitorRequest {
    std::uint8_t major = 0;
    std::uint8_t minor = 0;
    std::uint16_t length = 0;
    xcb_window_t window = 0;
    xcb_atom_t name = 0;
    std::uint8_t isPrimary = 0;
    std::uint8_t isAutomatic = 0;
    std::uint16_t outputs = 0;
    std::int16_t x = 0;
    std::int16_t y = 0;
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint32_t millimetresWide = 0;
    std::uint32_t millimetresHigh = 0;
};

bool send(xcb_connection_t* connection, SetMonitorRequest request)
{
    static const xcb_protocol_request_t protocol{1, &xcb_randr_id, XCB_RANDR_SET_MONITOR, 1};
    // The library writes into the two parts before the first one.
    std::array<iovec, 3> parts{};
    parts[2] = {&request, sizeof request};
    const xcb_void_cookie_t cookie{
        xcb_send_request(connection, XCB_REQUEST_CHECKED, &parts[2], &protocol)};
    const XReply<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
    return !error && xcb_connection_has_error(connection) == 0;
}

/// As screens of 96 points per inch would have it.
std::uint32_t millimetres(int pixels) { return static_cast<std::uint32_t>(pixels * 254 / 960); }

void pan(const RandrServer& server, RandrNumber crtc, const RandrCrtc& area, std::uint16_t tracking)
{
    const auto number = [](int value) { return static_cast<std::uint16_t>(value); };
    const auto cookie = xcb_randr_set_panning(
        server.connection(), crtc, XCB_CURRENT_TIME, number(area.x), number(area.y),
        number(area.width), number(area.height), 0, 0, tracking, tracking, 0, 0, 0, 0);
    const XReply<xcb_randr_set_panning_reply_t> reply(
        xcb_randr_set_panning_reply(server.connection(), cookie, nullptr));
}

} // namespace

bool followsNamedMonitors(const std::string& windowManager)
{
    return windowManager == "Openbox" || windowManager == "Metacity";
}

std::string windowManagerName(const RandrServer& server)
{
    const auto window =
        property(server.connection(), server.root(), "_NET_SUPPORTING_WM_CHECK", 32);
    if (window.size() != sizeof(xcb_window_t))
        return {};
    xcb_window_t check = 0;
    window.copy(reinterpret_cast<char*>(&check), sizeof check);
    return property(server.connection(), check, "_NET_WM_NAME", 8);
}

bool setNamedMonitor(const RandrServer& server, const std::string& name, const PixelRect& area)
{
    // Servers refuse a name that is there.
    if (namedMonitor(server, name))
        deleteNamedMonitor(server, name);
    SetMonitorRequest request;
    request.window = server.root();
    request.name = atomNamed(server.connection(), name);
    request.x = area.x;
    request.y = area.y;
    request.width = static_cast<std::uint16_t>(area.width);
    request.height = static_cast<std::uint16_t>(area.height);
    request.millimetresWide = millimetres(area.width);
    request.millimetresHigh = millimetres(area.height);
    return send(server.connection(), request);
}

void deleteNamedMonitor(const RandrServer& server, const std::string& name)
{
    const auto atom = atomNamed(server.connection(), name);
    const XReply<xcb_generic_error_t> error(xcb_request_check(
        server.connection(),
        xcb_randr_delete_monitor_checked(server.connection(), server.root(), atom)));
}

std::optional<PixelRect> namedMonitor(const RandrServer& server, const std::string& name)
{
    const auto atom = atomNamed(server.connection(), name);
    const XReply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
        server.connection(), xcb_randr_get_monitors(server.connection(), server.root(), 1),
        nullptr));
    if (!reply ||
        !holds(*reply, sizeof *reply + sizeof(xcb_randr_monitor_info_t) * reply->nMonitors +
                           sizeof(xcb_randr_output_t) * reply->nOutputs))
        return std::nullopt;
    auto each = xcb_randr_get_monitors_monitors_iterator(reply.get());
    for (; each.rem > 0; xcb_randr_monitor_info_next(&each)) {
        const auto& info = *each.data;
        if (info.name == atom)
            return pixelRect(info.x, info.y, info.width, info.height);
    }
    return std::nullopt;
}

PixelRect panningOf(const RandrServer& server, RandrNumber crtc)
{
    const XReply<xcb_randr_get_panning_reply_t> reply(xcb_randr_get_panning_reply(
        server.connection(), xcb_randr_get_panning(server.connection(), crtc), nullptr));
    return reply ? pixelRect(reply->left, reply->top, reply->width, reply->height) : PixelRect{};
}

void letPointerOut(const RandrServer& server, const RandrCrtc& crtc)
{
    pan(server, crtc.id, crtc, 1);
}

void keepPointerIn(const RandrServer& server, RandrNumber crtc) { pan(server, crtc, {}, 0); }

} // namespace farview
