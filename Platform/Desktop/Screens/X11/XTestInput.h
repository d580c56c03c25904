#pragma once

#include "Platform/Types/PixelRect.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <set>

namespace farview
{

/// The pointer, its buttons and the keys of an X server, moved and pressed as hands do. Nothing is
/// flushed. One thread; never waits for the server.
class XTestInput
{
public:
    /// `connection` has been found to be usable.
    explicit XTestInput(xcb_connection_t* connection);

    /// Whether the server has what it takes. Waits for the answer.
    static bool isPossible(xcb_connection_t* connection);

    void movePointer(PixelPoint place);
    void button(std::uint8_t number, bool isDown);
    bool hasButtonDown() const { return !mButtons.empty(); }
    /// Of the server: the kernel's code and 8.
    void key(std::uint8_t code, bool isDown);
    /// Lifts what was pressed here and is still down.
    void releaseAll();

private:
    void press(std::set<std::uint8_t>& held, std::uint8_t kind, std::uint8_t detail, bool isDown);
    void send(std::uint8_t kind, std::uint8_t detail, PixelPoint place = {});

    xcb_connection_t* mConnection;
    xcb_window_t mRoot;
    std::set<std::uint8_t> mButtons;
    std::set<std::uint8_t> mKeys;
};

/// Lifts every key and button that a program has pressed in this way, and none that a hand holds.
/// Waits until that is done.
void releaseAllOfXTest(xcb_connection_t* connection);

} // namespace farview
