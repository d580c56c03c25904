#pragma once

#include "Platform/Desktop/Screens/KeyStroke.h"
#include "Platform/Desktop/Screens/X11/XTestInput.h"

#include <xcb/xcb.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// Types on an X server. A character that no key writes is lent one that does nothing; that is
/// given back a second after its last use. One thread; waits for the server.
class TypedText
{
public:
    TypedText(xcb_connection_t* connection, XTestInput& keys);

    /// `text` is UTF-8; what is none is left out.
    void type(const std::string& text);
    /// Until there is something to give back, as poll() takes it.
    int millisecondsLeft() const;
    void giveBackWhatIsDue();
    /// Once programs have understood what was typed last.
    void giveBackAll();

private:
    using Clock = std::chrono::steady_clock;
    struct Lent {
        std::uint8_t code;
        char32_t character;
        Clock::time_point lastUse;
    };

    KeyboardState keyboard() const;
    void type(xkb_state& keyboard, char32_t character);
    void press(const KeyStroke& stroke);
    std::optional<std::uint8_t> lend(xkb_keymap& keymap, char32_t character);
    Lent* freeKey(xkb_keymap& keymap);
    void letProgramsUnderstand(Clock::time_point typed) const;
    void assign(std::uint8_t code, xcb_keysym_t symbol);

    xcb_connection_t* mConnection;
    XTestInput& mKeys;
    std::unique_ptr<xkb_context, FreeKeyboard> mContext;
    std::vector<Lent> mLent;
};

} // namespace farview
