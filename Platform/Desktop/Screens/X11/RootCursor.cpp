#include "Platform/Desktop/Screens/X11/RootCursor.h"

#include <xcb/xfixes.h>
#include <xcb/xinput.h>

namespace farview
{
namespace
{

/// The operation code of the input extension; 0 when it is missing or too old to tell of motion
/// while another program has grabbed the pointer.
std::uint8_t inputOpcode(xcb_connection_t* connection)
{
    const auto* extension = xcb_get_extension_data(connection, &xcb_input_id);
    if (!extension || !extension->present)
        return 0;
    const auto cookie = xcb_input_xi_query_version(connection, 2, 2);
    const XReply<xcb_input_xi_query_version_reply_t> version(
        xcb_input_xi_query_version_reply(connection, cookie, nullptr));
    const bool isNewEnough =
        version && (version->major_version > 2 ||
                    (version->major_version == 2 && version->minor_version >= 1));
    return isNewEnough ? extension->major_opcode : 0;
}

} // namespace

RootCursor::RootCursor(RandrServer& server) : mServer(server)
{
    auto* connection = server.connection();
    mFixesEvent = xcb_get_extension_data(connection, &xcb_xfixes_id)->first_event;
    mInputOpcode = inputOpcode(connection);
    xcb_xfixes_select_cursor_input(connection, server.root(),
                                   XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR);
    listenForMotion(true);
}

bool RootCursor::isNewShape(const xcb_generic_event_t& event) const
{
    return (event.response_type & 0x7F) == mFixesEvent + XCB_XFIXES_CURSOR_NOTIFY;
}

bool RootCursor::isMotion(const xcb_generic_event_t& event) const
{
    if ((event.response_type & 0x7F) != XCB_GE_GENERIC)
        return false;
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    return generic.extension == mInputOpcode && generic.event_type == XCB_INPUT_RAW_MOTION;
}

void RootCursor::listenForMotion(bool listen)
{
    if (mInputOpcode == 0)
        return;
    const struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                listen ? std::uint32_t{XCB_INPUT_XI_EVENT_MASK_RAW_MOTION} : 0};
    xcb_input_xi_select_events(mServer.connection(), mServer.root(), 1, &selection.head);
}

std::optional<CursorImage> RootCursor::image()
{
    constexpr int longestSide = 1024;
    const auto cookie = xcb_xfixes_get_cursor_image(mServer.connection());
    const XReply<xcb_xfixes_get_cursor_image_reply_t> reply(
        xcb_xfixes_get_cursor_image_reply(mServer.connection(), cookie, nullptr));
    if (!reply || reply->cursor_serial == 0 || reply->width > longestSide ||
        reply->height > longestSide)
        return std::nullopt;
    const auto count = static_cast<std::size_t>(reply->width) * reply->height;
    if (!holds(*reply, sizeof *reply + count * sizeof(std::uint32_t)))
        return std::nullopt;
    const auto* pixels = xcb_xfixes_get_cursor_image_cursor_image(reply.get());
    return CursorImage{reply->width,
                       reply->height,
                       pixelPoint(reply->xhot, reply->yhot),
                       {pixels, pixels + count}};
}

PixelPoint RootCursor::position()
{
    const auto cookie = xcb_query_pointer(mServer.connection(), mServer.root());
    const XReply<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(mServer.connection(), cookie, nullptr));
    return reply ? pixelPoint(reply->root_x, reply->root_y) : PixelPoint{-1, -1};
}

} // namespace farview
