#include "Platform/Desktop/Screens/X11/TypedText.h"

#include "Platform/Posix/UTF8.h"

#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <ranges>
#include <string_view>
#include <thread>

namespace farview
{
namespace
{

using namespace std::chrono_literals;

/// Programs ask what a key means after they were told of its press.
constexpr auto timeToUnderstand = 50ms;
constexpr auto timeToKeep = 1s;

} // namespace

TypedText::TypedText(xcb_connection_t* connection, XTestInput& keys)
    : mConnection(connection), mKeys(keys), mContext(xkb_context_new(XKB_CONTEXT_NO_FLAGS))
{
    xkb_x11_setup_xkb_extension(connection, XKB_X11_MIN_MAJOR_XKB_VERSION,
                                XKB_X11_MIN_MINOR_XKB_VERSION, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS,
                                nullptr, nullptr, nullptr, nullptr);
}

/// As it is now; null when the server does not say.
KeyboardState TypedText::keyboard() const
{
    const auto device = xkb_x11_get_core_keyboard_device_id(mConnection);
    const Keymap keymap(mContext && device >= 0
                            ? xkb_x11_keymap_new_from_device(mContext.get(), mConnection, device,
                                                             XKB_KEYMAP_COMPILE_NO_FLAGS)
                            : nullptr);
    return KeyboardState(keymap ? xkb_x11_state_new_from_device(keymap.get(), mConnection, device)
                                : nullptr);
}

void TypedText::type(const std::string& text)
{
    const auto state = keyboard();
    if (!state)
        return;
    for (std::string_view rest = text; !rest.empty();) {
        const auto [character, length] = decodeCharacter(rest);
        rest.remove_prefix(length);
        if (character)
            type(*state, *character == U'\n' ? U'\r' : *character);
    }
}

void TypedText::type(xkb_state& keyboard, char32_t character)
{
    const auto known = std::ranges::find(mLent, character, &Lent::character);
    if (known != mLent.end()) {
        known->lastUse = Clock::now();
        press({known->code});
    } else if (const auto stroke = keyStroke(keyboard, character)) {
        press(*stroke);
    } else if (const auto code = lend(*xkb_state_get_keymap(&keyboard), character)) {
        press({*code});
    }
}

void TypedText::press(const KeyStroke& stroke)
{
    for (const auto code : stroke.held)
        mKeys.key(code, true);
    mKeys.key(stroke.code, true);
    mKeys.key(stroke.code, false);
    for (const auto code : stroke.held | std::views::reverse)
        mKeys.key(code, false);
}

std::optional<std::uint8_t> TypedText::lend(xkb_keymap& keymap, char32_t character)
{
    const auto symbol = xkb_utf32_to_keysym(character);
    auto* key = symbol == XKB_KEY_NoSymbol ? nullptr : freeKey(keymap);
    if (!key)
        return std::nullopt;
    key->character = character;
    key->lastUse = Clock::now();
    assign(key->code, symbol);
    return key->code;
}

/// One that does nothing, else that of those which were lent that has not been used for longest.
/// Null when there is none.
TypedText::Lent* TypedText::freeKey(xkb_keymap& keymap)
{
    for (const auto code : spareKeys(keymap)) {
        if (std::ranges::find(mLent, code, &Lent::code) == mLent.end())
            return &mLent.emplace_back(Lent{code, 0, {}});
    }
    const auto oldest = std::ranges::min_element(mLent, {}, &Lent::lastUse);
    if (oldest == mLent.end())
        return nullptr;
    letProgramsUnderstand(oldest->lastUse);
    return &*oldest;
}

void TypedText::letProgramsUnderstand(Clock::time_point typed) const
{
    xcb_flush(mConnection);
    std::this_thread::sleep_until(typed + timeToUnderstand);
}

/// Twice: with and without Shift.
void TypedText::assign(std::uint8_t code, xcb_keysym_t symbol)
{
    const xcb_keysym_t symbols[]{symbol, symbol};
    xcb_change_keyboard_mapping(mConnection, 1, code, 2, symbols);
}

int TypedText::millisecondsLeft() const
{
    if (mLent.empty())
        return -1;
    const auto due = std::ranges::min_element(mLent, {}, &Lent::lastUse)->lastUse + timeToKeep;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now());
    return static_cast<int>(std::max<std::int64_t>(0, left.count()));
}

void TypedText::giveBackWhatIsDue()
{
    const auto now = Clock::now();
    std::erase_if(mLent, [&](const Lent& lent) {
        const bool isDue = lent.lastUse + timeToKeep <= now;
        if (isDue)
            assign(lent.code, XCB_NO_SYMBOL);
        return isDue;
    });
}

void TypedText::giveBackAll()
{
    if (mLent.empty())
        return;
    letProgramsUnderstand(std::ranges::max_element(mLent, {}, &Lent::lastUse)->lastUse);
    for (const auto& lent : mLent)
        assign(lent.code, XCB_NO_SYMBOL);
    mLent.clear();
}

} // namespace farview
