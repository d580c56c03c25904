#include "Platform/Desktop/Screens/Wlroots/VirtualKeyboard.h"

#include "Platform/Posix/FileDescriptor.h"

#include <sys/mman.h>
#include <wayland-client.h>
#include <wayland-protocols/wlr-virtual-input.h>

#include <chrono>
#include <cstdlib>
#include <sstream>
#include <string_view>

namespace farview
{
namespace
{

/// xkb counts from here what the kernel counts from 0.
constexpr std::uint32_t firstOfXkb = 8;
constexpr std::uint16_t lastKey = 0x2FF;

std::string symbolOf(char32_t character)
{
    std::array<char, 64> name{};
    xkb_keysym_get_name(xkb_utf32_to_keysym(character), name.data(), name.size());
    return name.data();
}

} // namespace

std::uint32_t inputTime()
{
    using namespace std::chrono;
    const auto now = steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(duration_cast<milliseconds>(now).count());
}

std::string keymapFor(const std::u32string& characters)
{
    std::ostringstream codes;
    std::ostringstream symbols;
    for (std::size_t index = 0; index < characters.size(); ++index) {
        codes << "<K" << index << "> = " << index + firstCharacterKey + firstOfXkb << ";\n";
        symbols << "key <K" << index << "> { [" << symbolOf(characters[index]) << "] };\n";
    }
    return "xkb_keymap {\nxkb_keycodes \"farview\" {\nminimum = 8;\nmaximum = 255;\n" +
           codes.str() +
           "};\nxkb_types \"farview\" { include \"basic\" };\n"
           "xkb_compatibility \"farview\" { include \"basic\" };\n"
           "xkb_symbols \"farview\" {\n" +
           symbols.str() + "};\n};\n";
}

void VirtualKeyboard::Free::operator()(char* text) const { std::free(text); }

VirtualKeyboard::VirtualKeyboard(zwp_virtual_keyboard_manager_v1* manager, wl_seat* seat)
    : mKeyboard(zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(manager, seat)),
      mContext(xkb_context_new(XKB_CONTEXT_NO_FLAGS))
{
}

VirtualKeyboard::~VirtualKeyboard()
{
    releaseAll();
    zwp_virtual_keyboard_v1_destroy(mKeyboard);
}

void VirtualKeyboard::setKeymap(const std::string& text)
{
    const std::unique_ptr<xkb_keymap, Free> keymap(
        text.empty() ? xkb_keymap_new_from_names(mContext.get(), nullptr, {})
                     : xkb_keymap_new_from_string(mContext.get(), text.c_str(),
                                                  XKB_KEYMAP_FORMAT_TEXT_V1, {}));
    if (!keymap)
        return;
    releaseAll();
    mState.reset(xkb_state_new(keymap.get()));
    sendKeymap(*keymap);
}

void VirtualKeyboard::sendKeymap(xkb_keymap& keymap)
{
    const std::unique_ptr<char, Free> text(
        xkb_keymap_get_as_string(&keymap, XKB_KEYMAP_FORMAT_TEXT_V1));
    const FileDescriptor file(::memfd_create("keymap", MFD_CLOEXEC));
    const std::string_view whole(text.get(), std::char_traits<char>::length(text.get()) + 1);
    if (writeAll(file.get(), whole) == 0)
        zwp_virtual_keyboard_v1_keymap(mKeyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file.get(),
                                       static_cast<std::uint32_t>(whole.size()));
}

void VirtualKeyboard::key(std::uint16_t code, bool isDown)
{
    const bool isNews = isDown ? mDown.insert(code).second : mDown.erase(code) > 0;
    if (!mState || !isNews || code > lastKey)
        return;
    zwp_virtual_keyboard_v1_key(mKeyboard, inputTime(), code,
                                isDown ? WL_KEYBOARD_KEY_STATE_PRESSED
                                       : WL_KEYBOARD_KEY_STATE_RELEASED);
    xkb_state_update_key(mState.get(), code + firstOfXkb, isDown ? XKB_KEY_DOWN : XKB_KEY_UP);
    sendModifiers();
}

void VirtualKeyboard::sendModifiers()
{
    const auto part = [this](xkb_state_component component) {
        return xkb_state_serialize_mods(mState.get(), component);
    };
    const std::array<std::uint32_t, 4> modifiers{
        part(XKB_STATE_MODS_DEPRESSED), part(XKB_STATE_MODS_LATCHED), part(XKB_STATE_MODS_LOCKED),
        xkb_state_serialize_layout(mState.get(), XKB_STATE_LAYOUT_EFFECTIVE)};
    if (modifiers == mModifiers)
        return;
    mModifiers = modifiers;
    zwp_virtual_keyboard_v1_modifiers(mKeyboard, modifiers[0], modifiers[1], modifiers[2],
                                      modifiers[3]);
}

void VirtualKeyboard::releaseAll()
{
    while (!mDown.empty())
        key(*mDown.begin(), false);
}

} // namespace farview
