#include "Platform/Desktop/Screens/X11/DeviceInput.h"

#include "Platform/Desktop/Screens/X11/XConnection.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace farview
{
namespace
{

using Matrix = std::array<float, 9>;
/// A device's whole area is the whole desktop.
constexpr Matrix wholeDesktop{1, 0, 0, 0, 1, 0, 0, 0, 1};

struct NamedDevice {
    std::uint16_t id;
    std::string_view name; ///< as long as the answer
};

/// The devices that are switched on, as far as the answer is sound.
std::vector<NamedDevice> devicesIn(const xcb_input_xi_query_device_reply_t& reply)
{
    std::vector<NamedDevice> devices;
    const auto* at = reinterpret_cast<const char*>(&reply + 1);
    const auto* end = at + std::size_t{4} * reply.length;
    const auto take = [&](std::size_t size) -> const char* {
        const bool isThere = size <= static_cast<std::size_t>(end - at);
        return isThere ? std::exchange(at, at + size) : nullptr;
    };
    for (int index = 0; index < reply.num_infos; ++index) {
        xcb_input_xi_device_info_t info{};
        const auto* head = take(sizeof info);
        if (!head)
            return devices;
        std::memcpy(&info, head, sizeof info);
        const auto* name = take((info.name_len + std::size_t{3}) / 4 * 4);
        if (!name)
            return devices;
        if (info.enabled)
            devices.push_back({info.deviceid, {name, info.name_len}});
        for (int count = info.num_classes; count > 0; --count) {
            xcb_input_device_class_t kind{};
            if (end - at < static_cast<std::ptrdiff_t>(sizeof kind))
                return devices;
            std::memcpy(&kind, at, sizeof kind);
            if (kind.len == 0 || !take(std::size_t{4} * kind.len))
                return devices;
        }
    }
    return devices;
}

/// The first part that lies at the place: what is rounded down twice comes out a pixel too far to
/// the left.
int part(double place, int length)
{
    const double parts = std::ceil(place * DevicePlace::parts / std::max(length, 1));
    return static_cast<int>(std::clamp<double>(parts, 0, DevicePlace::parts - 1));
}

} // namespace

DevicePlace devicePlace(double desktopX, double desktopY, RandrSize desktop)
{
    return {part(desktopX, desktop.width), part(desktopY, desktop.height)};
}

DeviceInput::DeviceInput(xcb_connection_t* connection, std::unique_ptr<InputDevices> devices)
    : mConnection(connection), mDevices(std::move(devices))
{
    const auto* extension = xcb_get_extension_data(connection, &xcb_input_id);
    if (!mDevices || !extension || !extension->present)
        return;
    const XReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
    if (!version)
        return;
    mOpcode = extension->major_opcode;
    listen();
    look();
}

void DeviceInput::listen()
{
    const auto root = screenOf(mConnection)->root;
    const struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL, 1},
                XCB_INPUT_XI_EVENT_MASK_HIERARCHY | XCB_INPUT_XI_EVENT_MASK_PROPERTY};
    xcb_input_xi_select_events(mConnection, root, 1, &selection.head);
    const std::uint32_t structure = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(mConnection, root, XCB_CW_EVENT_MASK, &structure);
    mMatrix = atomNamed(mConnection, "Coordinate Transformation Matrix");
    mFloat = atomNamed(mConnection, "FLOAT");
    measureDesktop();
}

void DeviceInput::measureDesktop()
{
    const auto cookie = xcb_get_geometry(mConnection, screenOf(mConnection)->root);
    const XReply<xcb_get_geometry_reply_t> desktop(
        xcb_get_geometry_reply(mConnection, cookie, nullptr));
    if (desktop)
        mDesktop = {desktop->width, desktop->height};
}

bool DeviceInput::serve(const xcb_generic_event_t& event)
{
    const int type = event.response_type & 0x7F;
    if (type == XCB_CONFIGURE_NOTIFY) {
        const auto& desktop = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        mDesktop = {desktop.width, desktop.height};
        return false;
    }
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (mOpcode == 0 || type != XCB_GE_GENERIC || generic.extension != mOpcode)
        return false;
    look();
    return true;
}

void DeviceInput::look()
{
    const XReply<xcb_input_xi_query_device_reply_t> reply(xcb_input_xi_query_device_reply(
        mConnection, xcb_input_xi_query_device(mConnection, XCB_INPUT_DEVICE_ALL), nullptr));
    mHasTouch = false;
    mHasPen = false;
    if (!reply)
        return;
    for (const auto& [id, name] : devicesIn(*reply)) {
        const bool isTouch = name.starts_with(InputDevices::touchName);
        const bool isPen = name.starts_with(InputDevices::penName);
        if (isTouch || isPen)
            mapToDesktop(id);
        mHasTouch = mHasTouch || isTouch;
        mHasPen = mHasPen || isPen;
    }
}

/// Some desktops map whatever looks like a touch screen to the screen that is built in.
void DeviceInput::mapToDesktop(std::uint16_t device)
{
    Matrix matrix{};
    const auto cookie =
        xcb_input_xi_get_property(mConnection, device, 0, mMatrix, mFloat, 0, matrix.size());
    const XReply<xcb_input_xi_get_property_reply_t> reply(
        xcb_input_xi_get_property_reply(mConnection, cookie, nullptr));
    if (!reply || reply->format != 32 || reply->num_items != matrix.size() ||
        !holds(*reply, sizeof *reply + sizeof matrix))
        return;
    std::memcpy(matrix.data(), xcb_input_xi_get_property_items(reply.get()), sizeof matrix);
    if (matrix != wholeDesktop)
        xcb_input_xi_change_property(mConnection, device, XCB_PROP_MODE_REPLACE, 32, mMatrix,
                                     mFloat, wholeDesktop.size(), wholeDesktop.data());
}

void DeviceInput::touch(const TouchPoint& point)
{
    if (!mDevices)
        return;
    auto scaled = point;
    scaled.width *= double(DevicePlace::parts) / std::max(mDesktop.width, 1);
    scaled.height *= double(DevicePlace::parts) / std::max(mDesktop.height, 1);
    mDevices->touch(scaled, devicePlace(point.place.desktopX, point.place.desktopY, mDesktop));
}

void DeviceInput::pen(const PenState& state)
{
    if (mDevices)
        mDevices->pen(state, devicePlace(state.place.desktopX, state.place.desktopY, mDesktop));
}

} // namespace farview
