#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Screens/KWin/KWinOutputs.h"
#include "Platform/Desktop/Screens/KeyStroke.h"

#include <QObject>
#include <QString>

#include <optional>

struct wl_keyboard;
struct wl_seat;

namespace farview
{

/// The layout of the user's keyboard, as KWin tells it. Main thread only.
class KWinKeyboard : public QObject
{
    Q_OBJECT

public:
    /// Follows it from now on.
    KWinKeyboard(WaylandConnection& connection, SessionBus& bus);
    ~KWinKeyboard() override;

    /// What has to be pressed for that character. Nothing where the layout of the moment has no key
    /// for it, and before KWin has told the layout.
    std::optional<KeyStroke> strokeFor(char32_t character) const;

private Q_SLOTS:
    void useLayout(unsigned layout);

private:
    void followLayout(SessionBus& bus);
    void followSeat();
    void followKeyboard();
    void useKeymap(int descriptor, std::uint32_t size);

    std::unique_ptr<xkb_context, FreeKeyboard> mContext;
    QString mOwner; ///< the own name of whoever tells the layout
    Keymap mKeymap;
    unsigned mLayout = 0; ///< of those that the keymap has
    ProxyPointer<wl_seat> mSeat;
    ProxyPointer<wl_keyboard> mKeyboard;
};

} // namespace farview
