#include "Platform/Desktop/Screens/Wlroots/VirtualKeyboard.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

/// What each key of that keymap writes; nothing when it is none.
std::u32string charactersOf(const std::string& text, std::size_t count)
{
    const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(
        xkb_context_new(XKB_CONTEXT_NO_FLAGS), xkb_context_unref);
    const std::unique_ptr<xkb_keymap, decltype(&xkb_keymap_unref)> keymap(
        xkb_keymap_new_from_string(context.get(), text.c_str(), XKB_KEYMAP_FORMAT_TEXT_V1, {}),
        xkb_keymap_unref);
    if (!keymap)
        return {};
    const std::unique_ptr<xkb_state, decltype(&xkb_state_unref)> state(xkb_state_new(keymap.get()),
                                                                       xkb_state_unref);
    std::u32string characters;
    for (xkb_keycode_t key = 0; key < count; ++key)
        characters += xkb_state_key_get_utf32(state.get(), 8 + firstCharacterKey + key);
    return characters;
}

TEST(KeymapFor, HasAKeyForEachCharacter)
{
    const std::u32string text = U"aA \"\\;{}€λ😀\r\t";
    EXPECT_EQ(charactersOf(keymapFor(text), text.size()), text);
}

TEST(KeymapFor, HasRoomForAsManyAsThereAreKeys)
{
    std::u32string text;
    for (std::size_t index = 0; index < mostCharacterKeys; ++index)
        text += static_cast<char32_t>(0x4E00 + index);
    EXPECT_EQ(charactersOf(keymapFor(text), text.size()), text);
}

TEST(KeymapFor, IsAKeymapAlsoWithCharactersThatNobodyCanType)
{
    EXPECT_EQ(charactersOf(keymapFor(U"\x1\xFFFF"
                                     U"b"),
                           3)
                  .back(),
              U'b');
}

} // namespace
} // namespace farview
