#include "Tests/Support/InputWindow.h"

#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace
{

template <typename Reply> void wait(Reply* reply)
{
    const bool isThere = reply;
    std::free(reply);
    if (!isThere)
        throw std::runtime_error("the X server refused what a test needs");
}

/// What the key means to a program that has heard of every change of the keyboard.
std::string textOf(xcb_connection_t* connection, xkb_context* context,
                   const xcb_key_press_event_t& event)
{
    auto* keymap = xkb_x11_keymap_new_from_device(context, connection,
                                                  xkb_x11_get_core_keyboard_device_id(connection),
                                                  XKB_KEYMAP_COMPILE_NO_FLAGS);
    auto* state = xkb_state_new(keymap);
    xkb_state_update_mask(state, event.state & 0xFF, 0, 0, 0, 0, event.state >> 13 & 3);
    std::string text(16, '\0');
    const int length = xkb_state_key_get_utf8(state, event.detail, text.data(), text.size());
    text.resize(static_cast<std::size_t>(std::max(0, length)));
    xkb_state_unref(state);
    xkb_keymap_unref(keymap);
    return text;
}

/// A property of its touch screen.
template <typename Value, std::size_t Count>
void setOfTouchScreen(const std::string& display, const std::string& property,
                      const std::string& type, const std::array<Value, Count>& values)
{
    auto* connection = xcb_connect(display.c_str(), nullptr);
    const auto atom = [&](const std::string& name) {
        auto* reply = xcb_intern_atom_reply(
            connection,
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr);
        const auto found = reply->atom;
        std::free(reply);
        return found;
    };
    auto* devices = xcb_input_xi_query_device_reply(
        connection, xcb_input_xi_query_device(connection, XCB_INPUT_DEVICE_ALL), nullptr);
    for (auto each = xcb_input_xi_query_device_infos_iterator(devices); each.rem > 0;
         xcb_input_xi_device_info_next(&each)) {
        const std::string device(xcb_input_xi_device_info_name(each.data), each.data->name_len);
        if (device == "Farview Touch")
            xcb_input_xi_change_property(connection, each.data->deviceid, XCB_PROP_MODE_REPLACE,
                                         8 * sizeof(Value), atom(property), atom(type), Count,
                                         values.data());
    }
    std::free(devices);
    wait(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    xcb_disconnect(connection);
}

} // namespace

InputWindow::InputWindow(const std::string& display, int x, int y, int width, int height)
    : mConnection(xcb_connect(display.c_str(), nullptr)),
      mContext(xkb_context_new(XKB_CONTEXT_NO_FLAGS))
{
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(mConnection)).data;
    mRoot = screen->root;
    mWindow = xcb_generate_id(mConnection);
    const std::uint32_t values[]{1, XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_PRESS |
                                        XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_KEY_PRESS |
                                        XCB_EVENT_MASK_KEY_RELEASE};
    xcb_create_window(mConnection, XCB_COPY_FROM_PARENT, mWindow, mRoot,
                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    xcb_map_window(mConnection, mWindow);
    listen();
    xcb_set_input_focus(mConnection, XCB_INPUT_FOCUS_NONE, mWindow, XCB_CURRENT_TIME);
    wait(xcb_get_input_focus_reply(mConnection, xcb_get_input_focus(mConnection), nullptr));
}

InputWindow::~InputWindow()
{
    xkb_context_unref(mContext);
    xcb_disconnect(mConnection);
}

void InputWindow::listen()
{
    xkb_x11_setup_xkb_extension(mConnection, XKB_X11_MIN_MAJOR_XKB_VERSION,
                                XKB_X11_MIN_MINOR_XKB_VERSION, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS,
                                nullptr, nullptr, nullptr, nullptr);
    mInputOpcode = xcb_get_extension_data(mConnection, &xcb_input_id)->major_opcode;
    wait(xcb_input_xi_query_version_reply(mConnection,
                                          xcb_input_xi_query_version(mConnection, 2, 2), nullptr));
    const struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                XCB_INPUT_XI_EVENT_MASK_TOUCH_BEGIN | XCB_INPUT_XI_EVENT_MASK_TOUCH_UPDATE |
                    XCB_INPUT_XI_EVENT_MASK_TOUCH_END};
    xcb_input_xi_select_events(mConnection, mWindow, 1, &selection.head);
}

std::vector<std::string> InputWindow::takeEvents()
{
    serve();
    return std::exchange(mEvents, {});
}

const std::string& InputWindow::typed()
{
    serve();
    return mTyped;
}

const std::vector<int>& InputWindow::keys()
{
    serve();
    return mKeys;
}

void InputWindow::grabPointer(bool grab)
{
    if (grab)
        wait(xcb_grab_pointer_reply(mConnection,
                                    xcb_grab_pointer(mConnection, 0, mWindow,
                                                     XCB_EVENT_MASK_POINTER_MOTION |
                                                         XCB_EVENT_MASK_BUTTON_PRESS |
                                                         XCB_EVENT_MASK_BUTTON_RELEASE,
                                                     XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                                                     XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
                                    nullptr));
    else
        xcb_ungrab_pointer(mConnection, XCB_CURRENT_TIME);
    xcb_flush(mConnection);
}

void InputWindow::grabServer(bool grab)
{
    grab ? xcb_grab_server(mConnection) : xcb_ungrab_server(mConnection);
    wait(xcb_get_input_focus_reply(mConnection, xcb_get_input_focus(mConnection), nullptr));
}

void InputWindow::serve()
{
    while (auto* event = xcb_poll_for_event(mConnection)) {
        serve(*event);
        std::free(event);
    }
}

void InputWindow::serve(const xcb_generic_event_t& event)
{
    const auto& pointer = reinterpret_cast<const xcb_button_press_event_t&>(event);
    switch (event.response_type & 0x7F) {
    case XCB_MOTION_NOTIFY:
        return writeMove(pointer.root_x, pointer.root_y);
    case XCB_BUTTON_PRESS:
        return write("down " + std::to_string(pointer.detail), pointer.root_x, pointer.root_y);
    case XCB_BUTTON_RELEASE:
        return write("up " + std::to_string(pointer.detail), pointer.root_x, pointer.root_y);
    case XCB_KEY_PRESS:
        return takeKey(reinterpret_cast<const xcb_key_press_event_t&>(event));
    case XCB_KEY_RELEASE:
        std::erase(mKeys, pointer.detail);
        return;
    case XCB_GE_GENERIC:
        return serveTouch(reinterpret_cast<const xcb_ge_generic_event_t&>(event));
    default:
        return;
    }
}

/// To the same place is no move.
void InputWindow::writeMove(int x, int y)
{
    if (std::exchange(mPointer, {x, y}) != std::pair(x, y))
        write("move", x, y);
}

void InputWindow::takeKey(const xcb_key_press_event_t& event)
{
    if (std::ranges::find(mKeys, event.detail) == mKeys.end())
        mKeys.push_back(event.detail);
    mTyped += textOf(mConnection, mContext, event);
}

void InputWindow::serveTouch(const xcb_ge_generic_event_t& event)
{
    if (event.extension != mInputOpcode)
        return;
    const auto& touch = reinterpret_cast<const xcb_input_touch_begin_event_t&>(event);
    const auto known = mFingers.try_emplace(touch.detail, static_cast<int>(mFingers.size()) + 1);
    const char* phase = event.event_type == XCB_INPUT_TOUCH_BEGIN    ? " begins"
                        : event.event_type == XCB_INPUT_TOUCH_UPDATE ? " goes on"
                                                                     : " ends";
    write("touch " + std::to_string(known.first->second) + phase, touch.root_x >> 16,
          touch.root_y >> 16);
}

void InputWindow::write(const std::string& what, int x, int y)
{
    mEvents.push_back(what + " " + std::to_string(x) + "," + std::to_string(y));
}

std::string heldDown(const std::string& display)
{
    auto* connection = xcb_connect(display.c_str(), nullptr);
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    auto* keys = xcb_query_keymap_reply(connection, xcb_query_keymap(connection), nullptr);
    auto* pointer =
        xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr);
    std::string text;
    for (int code = 0; code < 256; ++code) {
        if (keys->keys[code / 8] >> code % 8 & 1)
            text += " key " + std::to_string(code);
    }
    for (int button = 1; button <= 5; ++button) {
        if (pointer->mask >> (7 + button) & 1)
            text += " button " + std::to_string(button);
    }
    std::free(keys);
    std::free(pointer);
    xcb_disconnect(connection);
    return text.empty() ? text : text.substr(1);
}

std::string describedKeyboard(const std::string& display)
{
    auto* connection = xcb_connect(display.c_str(), nullptr);
    const auto* setup = xcb_get_setup(connection);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    auto* mapping = xcb_get_keyboard_mapping_reply(
        connection, xcb_get_keyboard_mapping(connection, setup->min_keycode, count), nullptr);
    std::string text;
    for (int index = 0; index < xcb_get_keyboard_mapping_keysyms_length(mapping); ++index)
        text += std::to_string(xcb_get_keyboard_mapping_keysyms(mapping)[index]) + " ";
    std::free(mapping);
    xcb_disconnect(connection);
    return text;
}

void mapTouchScreen(const std::string& display, const std::array<float, 9>& matrix)
{
    setOfTouchScreen(display, "Coordinate Transformation Matrix", "FLOAT", matrix);
}

void enableTouchScreen(const std::string& display, bool enable)
{
    setOfTouchScreen(display, "Device Enabled", "INTEGER", std::array<std::uint8_t, 1>{enable});
}
