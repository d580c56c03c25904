#pragma once

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon.h>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// A program with one window on an X server, which writes down what a user does there, where on the
/// desktop. It has the keyboard, and understands keys as toolkits do.
class InputWindow
{
public:
    /// Covers that part of the desktop.
    InputWindow(const std::string& display, int x, int y, int width, int height);
    ~InputWindow();
    InputWindow(const InputWindow&) = delete;
    InputWindow& operator=(const InputWindow&) = delete;

    /// What has happened since it was asked last: "move 10,20", "down 1 10,20", "up 1 10,20",
    /// "touch 1 begins 10,20", "goes on", "ends"; fingers are counted from 1.
    std::vector<std::string> takeEvents();
    /// All that has been typed so far, as UTF-8.
    const std::string& typed();
    /// The keys that are down, as the server numbers them.
    const std::vector<int>& keys();
    /// Lets nobody else have the pointer, or anything of the server, until it is asked to end that.
    void grabPointer(bool grab);
    void grabServer(bool grab);

private:
    void listen();
    void serve();
    void serve(const xcb_generic_event_t& event);
    void serveTouch(const xcb_ge_generic_event_t& event);
    void takeKey(const xcb_key_press_event_t& event);
    void writeMove(int x, int y);
    void write(const std::string& what, int x, int y);

    xcb_connection_t* mConnection;
    xcb_window_t mRoot = 0;
    xcb_window_t mWindow = 0;
    xkb_context* mContext;
    std::uint8_t mInputOpcode = 0;
    std::vector<std::string> mEvents;
    std::string mTyped;
    std::vector<int> mKeys;
    std::map<std::uint32_t, int> mFingers;
    std::pair<int, int> mPointer{-1, -1};
};

/// The keys and buttons that are down there, whoever holds them: "key 38 button 1".
std::string heldDown(const std::string& display);
/// What every key of that server's keyboard means.
std::string describedKeyboard(const std::string& display);
/// Maps its touch screen as a desktop would, by a matrix of three rows.
void mapTouchScreen(const std::string& display, const std::array<float, 9>& matrix);
/// As unplugging and plugging it in does.
void enableTouchScreen(const std::string& display, bool enable);
