#include "Platform/Desktop/Screens/KeyStroke.h"

#include <algorithm>

namespace farview
{
namespace
{

/// What an X server can give to a program.
constexpr xkb_keycode_t leastCode = 8;
constexpr xkb_keycode_t mostCode = 255;

template <typename Found> std::optional<std::uint8_t> firstKey(Found found)
{
    for (auto code = leastCode; code <= mostCode; ++code) {
        if (found(code))
            return static_cast<std::uint8_t>(code);
    }
    return std::nullopt;
}

bool isFor(xkb_keymap* keymap, xkb_keycode_t code, xkb_keysym_t symbol)
{
    const xkb_keysym_t* symbols = nullptr;
    return xkb_keymap_key_get_syms_by_level(keymap, code, 0, 0, &symbols) == 1 &&
           *symbols == symbol;
}

bool hasSymbols(xkb_keymap* keymap, xkb_keycode_t code)
{
    const auto layouts = xkb_keymap_num_layouts_for_key(keymap, code);
    for (xkb_layout_index_t layout = 0; layout < layouts; ++layout) {
        const auto levels = xkb_keymap_num_levels_for_key(keymap, code, layout);
        for (xkb_level_index_t level = 0; level < levels; ++level) {
            const xkb_keysym_t* symbols = nullptr;
            if (xkb_keymap_key_get_syms_by_level(keymap, code, layout, level, &symbols) > 0)
                return true;
        }
    }
    return false;
}

/// The keyboard after these keys were pressed.
KeyboardState withHeld(const xkb_state& keyboard, const std::vector<std::uint8_t>& held)
{
    auto* before = const_cast<xkb_state*>(&keyboard);
    KeyboardState after(xkb_state_new(xkb_state_get_keymap(before)));
    const auto modifiers = [&](auto kind) { return xkb_state_serialize_mods(before, kind); };
    const auto layout = [&](auto kind) { return xkb_state_serialize_layout(before, kind); };
    xkb_state_update_mask(after.get(), modifiers(XKB_STATE_MODS_DEPRESSED),
                          modifiers(XKB_STATE_MODS_LATCHED), modifiers(XKB_STATE_MODS_LOCKED),
                          layout(XKB_STATE_LAYOUT_DEPRESSED), layout(XKB_STATE_LAYOUT_LATCHED),
                          layout(XKB_STATE_LAYOUT_LOCKED));
    for (const auto code : held)
        xkb_state_update_key(after.get(), code, XKB_KEY_DOWN);
    return after;
}

/// What can be held, the simplest first.
std::vector<std::vector<std::uint8_t>> chords(xkb_keymap* keymap)
{
    const auto key = [&](xkb_keysym_t symbol) {
        return firstKey([&](auto code) { return isFor(keymap, code, symbol); });
    };
    std::vector<std::vector<std::uint8_t>> found{{}};
    const auto shift = key(XKB_KEY_Shift_L);
    const auto third = key(XKB_KEY_ISO_Level3_Shift);
    if (shift)
        found.push_back({*shift});
    if (third)
        found.push_back({*third});
    if (shift && third)
        found.push_back({*shift, *third});
    return found;
}

} // namespace

std::optional<KeyStroke> keyStroke(const xkb_state& keyboard, char32_t character)
{
    auto* keymap = xkb_state_get_keymap(const_cast<xkb_state*>(&keyboard));
    if (character == 0)
        return std::nullopt;
    for (const auto& held : chords(keymap)) {
        const auto state = withHeld(keyboard, held);
        const auto code = firstKey(
            [&](auto each) { return xkb_state_key_get_utf32(state.get(), each) == character; });
        if (code)
            return KeyStroke{*code, held};
    }
    return std::nullopt;
}

std::vector<std::uint8_t> spareKeys(xkb_keymap& keymap)
{
    std::vector<std::uint8_t> spare;
    const auto last = std::min(mostCode, xkb_keymap_max_keycode(&keymap));
    for (auto code = last; code >= std::max(leastCode, xkb_keymap_min_keycode(&keymap)); --code) {
        if (!hasSymbols(&keymap, code))
            spare.push_back(static_cast<std::uint8_t>(code));
    }
    return spare;
}

} // namespace farview
