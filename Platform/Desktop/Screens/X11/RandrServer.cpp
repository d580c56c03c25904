#include "Platform/Desktop/Screens/X11/RandrServer.h"

#include <xcb/randr.h>

#include <algorithm>
#include <string>

namespace farview
{
namespace
{

/// More than any machine has.
constexpr std::size_t mostParts = 256;

template <typename Number> std::vector<RandrNumber> numbers(const Number* first, std::size_t count)
{
    return {first, first + count};
}

std::string text(const std::uint8_t* first, std::size_t count) { return {first, first + count}; }

} // namespace

RandrServer::RandrServer(xcb_connection_t* connection) : mConnection(connection)
{
    const auto* screen = screenOf(connection);
    mRoot = screen ? screen->root : 0;
    mIsUsable = mRoot != 0 && hasRandr();
}

bool RandrServer::hasRandr()
{
    const auto* extension = xcb_get_extension_data(mConnection, &xcb_randr_id);
    if (!extension || !extension->present)
        return false;
    const XReply<xcb_randr_query_version_reply_t> version(xcb_randr_query_version_reply(
        mConnection, xcb_randr_query_version(mConnection, 1, 3), nullptr));
    return version && (version->major_version > 1 ||
                       (version->major_version == 1 && version->minor_version >= 3));
}

bool RandrServer::readSizes(RandrLayout& layout)
{
    const auto geometryCookie = xcb_get_geometry(mConnection, mRoot);
    const auto rangeCookie = xcb_randr_get_screen_size_range(mConnection, mRoot);
    const auto primaryCookie = xcb_randr_get_output_primary(mConnection, mRoot);
    const XReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(mConnection, geometryCookie, nullptr));
    const XReply<xcb_randr_get_screen_size_range_reply_t> range(
        xcb_randr_get_screen_size_range_reply(mConnection, rangeCookie, nullptr));
    const XReply<xcb_randr_get_output_primary_reply_t> primary(
        xcb_randr_get_output_primary_reply(mConnection, primaryCookie, nullptr));
    if (!geometry || !range || !primary)
        return false;
    layout.size = {geometry->width, geometry->height};
    layout.largestSize = {range->max_width, range->max_height};
    layout.primary = primary->output;
    return true;
}

bool RandrServer::readResources(RandrLayout& layout)
{
    const auto cookie = xcb_randr_get_screen_resources_current(mConnection, mRoot);
    const XReply<xcb_randr_get_screen_resources_current_reply_t> found(
        xcb_randr_get_screen_resources_current_reply(mConnection, cookie, nullptr));
    if (!found || found->num_crtcs > mostParts || found->num_outputs > mostParts)
        return false;
    const std::size_t lists = 4 * (std::size_t{found->num_crtcs} + found->num_outputs);
    if (!holds(*found, sizeof *found + lists + sizeof(xcb_randr_mode_info_t) * found->num_modes +
                           found->names_len))
        return false;
    const auto* crtcs = xcb_randr_get_screen_resources_current_crtcs(found.get());
    const auto* outputs = xcb_randr_get_screen_resources_current_outputs(found.get());
    const auto* modes = xcb_randr_get_screen_resources_current_modes(found.get());
    layout.timestamp = found->config_timestamp;
    for (std::size_t index = 0; index < found->num_crtcs; ++index)
        layout.crtcs.emplace_back().id = crtcs[index];
    for (std::size_t index = 0; index < found->num_outputs; ++index)
        layout.outputs.emplace_back().id = outputs[index];
    const auto* name = xcb_randr_get_screen_resources_current_names(found.get());
    std::size_t left = found->names_len;
    for (std::size_t index = 0; index < found->num_modes; ++index) {
        const std::size_t length = std::min<std::size_t>(modes[index].name_len, left);
        layout.modes.push_back(
            {modes[index].id, modes[index].width, modes[index].height, text(name, length)});
        name += length;
        left -= length;
    }
    return true;
}

bool RandrServer::readCrtcs(RandrLayout& layout)
{
    std::vector<xcb_randr_get_crtc_info_cookie_t> cookies;
    for (const auto& crtc : layout.crtcs)
        cookies.push_back(xcb_randr_get_crtc_info(mConnection, crtc.id, layout.timestamp));
    for (std::size_t index = 0; index < cookies.size(); ++index) {
        const XReply<xcb_randr_get_crtc_info_reply_t> found(
            xcb_randr_get_crtc_info_reply(mConnection, cookies[index], nullptr));
        if (!found || !holds(*found, sizeof *found + std::size_t{4} * found->num_outputs))
            return false;
        RandrCrtc& crtc = layout.crtcs[index];
        crtc.x = found->x;
        crtc.y = found->y;
        crtc.width = found->width;
        crtc.height = found->height;
        crtc.mode = found->mode;
        crtc.rotation = found->rotation;
        crtc.outputs = numbers(xcb_randr_get_crtc_info_outputs(found.get()), found->num_outputs);
    }
    return true;
}

bool RandrServer::readOutputs(RandrLayout& layout)
{
    std::vector<xcb_randr_get_output_info_cookie_t> cookies;
    for (const auto& output : layout.outputs)
        cookies.push_back(xcb_randr_get_output_info(mConnection, output.id, layout.timestamp));
    for (std::size_t index = 0; index < cookies.size(); ++index) {
        const XReply<xcb_randr_get_output_info_reply_t> found(
            xcb_randr_get_output_info_reply(mConnection, cookies[index], nullptr));
        if (!found || !holds(*found, sizeof *found + std::size_t{4} * found->num_crtcs +
                                         std::size_t{4} * found->num_modes +
                                         std::size_t{4} * found->num_clones + found->name_len))
            return false;
        RandrOutput& output = layout.outputs[index];
        output.name = text(xcb_randr_get_output_info_name(found.get()), found->name_len);
        output.crtc = found->crtc;
        output.crtcs = numbers(xcb_randr_get_output_info_crtcs(found.get()), found->num_crtcs);
        output.modes = numbers(xcb_randr_get_output_info_modes(found.get()), found->num_modes);
    }
    return true;
}

bool RandrServer::setScreenSize(RandrSize size, RandrSize millimetres)
{
    const auto cookie = xcb_randr_set_screen_size_checked(
        mConnection, mRoot, static_cast<std::uint16_t>(size.width),
        static_cast<std::uint16_t>(size.height), static_cast<std::uint32_t>(millimetres.width),
        static_cast<std::uint32_t>(millimetres.height));
    const XReply<xcb_generic_error_t> error(xcb_request_check(mConnection, cookie));
    return !error && xcb_connection_has_error(mConnection) == 0;
}

bool RandrServer::apply(const RandrCrtc& crtc, std::uint32_t timestamp)
{
    const auto cookie = xcb_randr_set_crtc_config(
        mConnection, crtc.id, XCB_CURRENT_TIME, timestamp, static_cast<std::int16_t>(crtc.x),
        static_cast<std::int16_t>(crtc.y), crtc.mode, crtc.rotation,
        static_cast<std::uint32_t>(crtc.outputs.size()), crtc.outputs.data());
    const XReply<xcb_randr_set_crtc_config_reply_t> result(
        xcb_randr_set_crtc_config_reply(mConnection, cookie, nullptr));
    return result && result->status == XCB_RANDR_SET_CONFIG_SUCCESS;
}

std::optional<RandrLayout> RandrServer::layout()
{
    RandrLayout layout;
    if (!mIsUsable || !readSizes(layout) || !readResources(layout) || !readCrtcs(layout) ||
        !readOutputs(layout))
        return std::nullopt;
    return layout;
}

} // namespace farview
