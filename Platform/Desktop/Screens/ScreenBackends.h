#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/VirtualScreens.h"

#include <functional>
#include <string>

namespace farview
{

/// What a session says of its desktop.
struct SessionFacts {
    std::string type;           ///< $XDG_SESSION_TYPE
    std::string waylandDisplay; ///< $WAYLAND_DISPLAY
    std::string display;        ///< $DISPLAY
    std::string desktop;        ///< $XDG_CURRENT_DESKTOP: "ubuntu:GNOME"
    bool hasMutter = false;     ///< somebody owns org.gnome.Mutter.ScreenCast on the session bus
};

/// Who can be asked for monitors.
enum class ScreenBackend { none, x11, mutter };

/// On Wayland an X server may serve older programs: it has no monitors to give.
ScreenBackend screenBackendFor(const SessionFacts& facts);

/// What this process's environment says; the bus is not asked.
SessionFacts sessionFacts();

/// Monitors of whatever desktop this is. Main thread only; what it chooses from must live longer.
class ScreenBackends final : public VirtualScreens
{
public:
    ScreenBackends(SessionBus& bus, SessionFacts facts, VirtualScreens& x11,
                   VirtualScreens& mutter);

    void availability(std::weak_ptr<void> target, Answer then) override;
    std::unique_ptr<VirtualScreen> open(const ScreenWish& wish, Delegate delegate) override;

private:
    void lookForMutter(std::function<void()> then);
    VirtualScreens* chosen() const;

    SessionBus& mBus;
    SessionFacts mFacts;
    VirtualScreens& mX11;
    VirtualScreens& mMutter;
    QObject mAsker;
};

} // namespace farview
