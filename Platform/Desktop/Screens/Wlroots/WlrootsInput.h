#pragma once

#include "Platform/Desktop/Screens/Wayland/WaylandConnection.h"
#include "Platform/Desktop/Screens/Wlroots/VirtualKeyboard.h"
#include "Platform/InputSink.h"
#include "Platform/VirtualScreens.h"

#include <optional>
#include <set>

struct wl_keyboard;
struct wl_keyboard_listener;
struct wl_output;
struct wl_seat;
struct wl_seat_listener;
struct zwlr_virtual_pointer_v1;

namespace farview
{

/// Input for one output: a mouse and two keyboards of ours, one with the user's layout and one for
/// text. wlroots knows no touch screens of other programs. Main thread only.
class WlrootsInput final : public InputSink
{
public:
    WlrootsInput() = default;
    ~WlrootsInput() override { end(); }
    WlrootsInput(const WlrootsInput&) = delete;
    WlrootsInput& operator=(const WlrootsInput&) = delete;

    /// Makes the devices that the compositor allows, so that programs know of them before they are
    /// used. `end` before the connection goes.
    void begin(WaylandConnection& connection, wl_output* output);
    /// The monitor is like that.
    void setMonitor(const ScreenGeometry& monitor) { mMonitor = monitor; }
    /// Releases what is down, and passes on nothing any more.
    void end();

    InputAbilities abilities() const override;
    void movePointer(const InputPlace& place) override;
    void button(PointerButton button, bool isDown) override;
    void wheel(double right, double down) override;
    void touch(const TouchPoint&) override {}
    void pen(const PenState&) override {}
    void key(std::uint16_t code, bool isDown) override;
    void text(const std::string& text) override;

private:
    static const wl_seat_listener& seatEvents();
    static const wl_keyboard_listener& keyboardEvents();
    void makePointer();
    void makeKeyboards();
    void useCapabilities(std::uint32_t capabilities);
    void useKeymap(std::uint32_t format, int file, std::uint32_t size);
    bool mayUse(const void* device);
    void catchUp();
    void releaseAll();
    void turn(std::uint32_t axis, double notches);
    void typeWhatWaits();
    void learn(const std::u32string& characters);
    void type(char32_t character);

    WaylandConnection* mConnection = nullptr;
    wl_output* mOutput = nullptr;
    wl_seat* mSeat = nullptr;
    wl_keyboard* mUsersKeyboard = nullptr;
    zwlr_virtual_pointer_v1* mPointer = nullptr;
    std::unique_ptr<VirtualKeyboard> mKeys;
    std::unique_ptr<VirtualKeyboard> mText;
    std::u32string mCharacters;       ///< that the keyboard for text has
    std::u32string mToType;           ///< once the compositor takes it
    std::set<std::uint32_t> mButtons; ///< that are down
    std::optional<InputPlace> mSkipped;
    bool mHasLost = false; ///< something that the compositor did not take
    std::optional<ScreenGeometry> mMonitor;
    Subscription mDrained;
};

} // namespace farview
