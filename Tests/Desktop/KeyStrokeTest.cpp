#include "Platform/Desktop/Screens/KeyStroke.h"

#include <gtest/gtest.h>

#include <string>

namespace farview
{
namespace
{

constexpr std::uint8_t shift = 50;
constexpr std::uint8_t altGr = 92;
constexpr std::uint8_t capsLock = 66;
constexpr std::uint8_t keyA = 38;
constexpr std::uint8_t keyQ = 24;

using Held = std::vector<std::uint8_t>;

/// A keyboard as users have one.
class Keyboard
{
public:
    explicit Keyboard(const char* layouts)
    {
        const std::unique_ptr<xkb_context, FreeKeyboard> context(
            xkb_context_new(XKB_CONTEXT_NO_FLAGS));
        const xkb_rule_names names{"evdev", "pc105", layouts, "", ""};
        mKeymap.reset(
            xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
        mState.reset(xkb_state_new(mKeymap.get()));
    }
    Keyboard& press(std::uint8_t code)
    {
        xkb_state_update_key(mState.get(), code, XKB_KEY_DOWN);
        return *this;
    }
    Keyboard& tap(std::uint8_t code)
    {
        press(code);
        xkb_state_update_key(mState.get(), code, XKB_KEY_UP);
        return *this;
    }
    Keyboard& useLayout(xkb_layout_index_t layout)
    {
        xkb_state_update_mask(mState.get(), 0, 0, 0, 0, 0, layout);
        return *this;
    }
    std::optional<KeyStroke> stroke(char32_t character) const
    {
        return keyStroke(*mState, character);
    }
    xkb_keymap& keymap() const { return *mKeymap; }

private:
    Keymap mKeymap;
    KeyboardState mState;
};

TEST(KeyStroke, IsWhatThisLayoutNeedsForTheCharacter)
{
    const struct {
        const char* layout;
        char32_t character;
        std::uint8_t code;
        Held held;
    } table[]{
        {"us", U'a', keyA, {}},
        {"us", U'A', keyA, {shift}},
        {"us", U'@', 11, {shift}},
        {"de", U'@', keyQ, {altGr}},
        {"de", U'ß', 20, {}},
        {"de", U'z', 29, {}},
        {"us", U'z', 52, {}},
        {"fr", U'a', keyQ, {}},
        {"fr", U'1', 10, {shift}},
        {"de", U'€', 26, {altGr}},
        {"de", U'¡', 10, {shift, altGr}},
        {"us", U'\r', 36, {}},
    };
    for (const auto& row : table)
        EXPECT_EQ(Keyboard(row.layout).stroke(row.character), (KeyStroke{row.code, row.held}))
            << row.layout << " " << static_cast<unsigned>(row.character);
}

TEST(KeyStroke, GoesByTheLayoutThatIsOn)
{
    Keyboard keyboard("us,ru");
    EXPECT_EQ(keyboard.stroke(U'ф'), std::nullopt);
    keyboard.useLayout(1);
    EXPECT_EQ(keyboard.stroke(U'ф'), KeyStroke{keyA});
    EXPECT_EQ(keyboard.stroke(U'a'), std::nullopt);
}

TEST(KeyStroke, UndoesCapsLock)
{
    Keyboard keyboard("us");
    keyboard.tap(capsLock);
    EXPECT_EQ(keyboard.stroke(U'a'), (KeyStroke{keyA, {shift}}));
    EXPECT_EQ(keyboard.stroke(U'A'), KeyStroke{keyA});
    EXPECT_EQ(keyboard.stroke(U'1'), KeyStroke{10});
}

TEST(KeyStroke, KnowsWhatIsHeldAlready)
{
    Keyboard keyboard("us");
    keyboard.press(shift);
    EXPECT_EQ(keyboard.stroke(U'A'), KeyStroke{keyA});
}

TEST(KeyStroke, IsNoneForWhatNoKeyWrites)
{
    for (const char32_t character : {U'ж', U'漢', U'😀', U'\0'})
        EXPECT_EQ(Keyboard("us").stroke(character), std::nullopt)
            << static_cast<unsigned>(character);
}

TEST(SpareKeys, AreThoseThatDoNothing)
{
    const Keyboard keyboard("us");
    const auto spare = spareKeys(keyboard.keymap());
    EXPECT_GT(spare.size(), 5u);
    for (const auto code : {keyA, shift, capsLock, std::uint8_t{36}})
        EXPECT_EQ(std::count(spare.begin(), spare.end(), code), 0) << int{code};
}

} // namespace
} // namespace farview
