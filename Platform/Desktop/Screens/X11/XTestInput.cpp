#include "Platform/Desktop/Screens/X11/XTestInput.h"

#include "Platform/Desktop/Screens/X11/XConnection.h"

#include <xcb/xtest.h>

#include <utility>

namespace farview
{

bool XTestInput::isPossible(xcb_connection_t* connection)
{
    const auto* extension = xcb_get_extension_data(connection, &xcb_test_id);
    if (!extension || !extension->present)
        return false;
    const XReply<xcb_test_get_version_reply_t> version(
        xcb_test_get_version_reply(connection, xcb_test_get_version(connection, 2, 2), nullptr));
    return version != nullptr;
}

XTestInput::XTestInput(xcb_connection_t* connection)
    : mConnection(connection), mRoot(screenOf(connection)->root)
{
    // Some window managers keep all others out while a window is dragged, until the button is
    // lifted: that must come through.
    xcb_test_grab_control(mConnection, 1);
}

void XTestInput::movePointer(PixelPoint place) { send(XCB_MOTION_NOTIFY, 0, place); }

void XTestInput::button(std::uint8_t number, bool isDown)
{
    press(mButtons, isDown ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, number, isDown);
}

void XTestInput::key(std::uint8_t code, bool isDown)
{
    press(mKeys, isDown ? XCB_KEY_PRESS : XCB_KEY_RELEASE, code, isDown);
}

void XTestInput::releaseAll()
{
    for (const auto number : std::exchange(mButtons, {}))
        send(XCB_BUTTON_RELEASE, number);
    for (const auto code : std::exchange(mKeys, {}))
        send(XCB_KEY_RELEASE, code);
}

/// What is down already is not pressed again: keys repeat by themselves.
void XTestInput::press(std::set<std::uint8_t>& held, std::uint8_t kind, std::uint8_t detail,
                       bool isDown)
{
    const bool isNew = isDown ? held.insert(detail).second : held.erase(detail) > 0;
    if (isNew)
        send(kind, detail);
}

void XTestInput::send(std::uint8_t kind, std::uint8_t detail, PixelPoint place)
{
    xcb_test_fake_input(mConnection, kind, detail, XCB_CURRENT_TIME, mRoot, place.x, place.y, 0);
}

/// The server has a keyboard and a pointer of its own for this extension, and passes over the
/// lifting of what is not down there.
void releaseAllOfXTest(xcb_connection_t* connection)
{
    if (!screenOf(connection) || !XTestInput::isPossible(connection))
        return;
    const auto release = [connection](std::uint8_t kind, int detail) {
        xcb_test_fake_input(connection, kind, static_cast<std::uint8_t>(detail), XCB_CURRENT_TIME,
                            XCB_NONE, 0, 0, 0);
    };
    xcb_test_grab_control(connection, 1);
    const auto* setup = xcb_get_setup(connection);
    for (int code = setup->min_keycode; code <= setup->max_keycode; ++code)
        release(XCB_KEY_RELEASE, code);
    for (int number = 1; number <= 9; ++number)
        release(XCB_BUTTON_RELEASE, number);
    const XReply<xcb_get_input_focus_reply_t> done(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

} // namespace farview
