#pragma once

#include <xkbcommon/xkbcommon.h>

#include <array>
#include <cstdint>
#include <memory>
#include <set>
#include <string>

struct wl_seat;
struct zwp_virtual_keyboard_manager_v1;
struct zwp_virtual_keyboard_v1;

namespace farview
{

/// Now, as events of input are dated, in milliseconds.
std::uint32_t inputTime();

/// A keyboard of ours on a seat. Compositors leave it to us to say what its keys mean. Main thread
/// only; ends before its connection.
class VirtualKeyboard
{
public:
    VirtualKeyboard(zwp_virtual_keyboard_manager_v1* manager, wl_seat* seat);
    /// Releases what is down.
    ~VirtualKeyboard();
    VirtualKeyboard(const VirtualKeyboard&) = delete;
    VirtualKeyboard& operator=(const VirtualKeyboard&) = delete;

    /// In the text form of libxkbcommon; empty: the layout that the environment names. What it does
    /// not understand changes nothing.
    void setKeymap(const std::string& text);
    /// The kernel's code. Keys without a meaning are passed over.
    void key(std::uint16_t code, bool isDown);
    void releaseAll();

private:
    struct Free {
        void operator()(xkb_context* context) const { xkb_context_unref(context); }
        void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
        void operator()(xkb_state* state) const { xkb_state_unref(state); }
        void operator()(char* text) const;
    };

    void sendKeymap(xkb_keymap& keymap);
    void sendModifiers();

    zwp_virtual_keyboard_v1* mKeyboard;
    std::unique_ptr<xkb_context, Free> mContext;
    std::unique_ptr<xkb_state, Free> mState;
    std::set<std::uint16_t> mDown;
    std::array<std::uint32_t, 4> mModifiers{}; ///< that were sent last
};

/// Keys for characters, one each and from the first on, as the text form of a keymap.
std::string keymapFor(const std::u32string& characters);
/// The first of them, as the kernel counts.
constexpr std::uint16_t firstCharacterKey = 1;
/// As many as a keyboard has keys.
constexpr std::size_t mostCharacterKeys = 240;

} // namespace farview
