#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace farview
{

struct FreeKeyboard {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
};
using Keymap = std::unique_ptr<xkb_keymap, FreeKeyboard>;
using KeyboardState = std::unique_ptr<xkb_state, FreeKeyboard>;

/// What has to be pressed for one character, in the codes of X: the kernel's plus 8.
struct KeyStroke {
    std::uint8_t code = 0;
    std::vector<std::uint8_t> held = {}; ///< before and meanwhile: Shift, AltGr

    bool operator==(const KeyStroke&) const = default;
};

/// How this keyboard writes the character as it is now, whatever layout and locks are on. Nothing
/// when it has no key for it.
std::optional<KeyStroke> keyStroke(const xkb_state& keyboard, char32_t character);
/// The keys that do nothing.
std::vector<std::uint8_t> spareKeys(xkb_keymap& keymap);

} // namespace farview
