#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/VirtualScreens.h"

#include <map>
#include <memory>
#include <string>

namespace farview
{

/// What a session says of its desktop.
struct SessionFacts {
    std::string type = {};           ///< $XDG_SESSION_TYPE
    std::string waylandDisplay = {}; ///< $WAYLAND_DISPLAY
    std::string display = {};        ///< $DISPLAY
    std::string desktop = {};        ///< $XDG_CURRENT_DESKTOP: "ubuntu:GNOME"
    std::string swaySocket = {};     ///< $SWAYSOCK
    std::string hyprland = {};       ///< $HYPRLAND_INSTANCE_SIGNATURE
    bool isSandboxed = false;        ///< a sandbox lets this process ask a portal, and nobody else
    bool hasMutter = false; ///< somebody owns org.gnome.Mutter.ScreenCast on the session bus
};

/// Who can be asked for monitors.
enum class ScreenBackend { none, x11, mutter, wlroots, kwin, portal };

/// On Wayland an X server may serve older programs: it has no monitors to give.
ScreenBackend screenBackendFor(const SessionFacts& facts);

/// What this process's environment says; the bus is not asked.
SessionFacts sessionFacts();

/// Monitors of whatever desktop this is. Where a Wayland desktop has no way for us, its portal may
/// have one. Main thread only; what it chooses from must live longer.
class ScreenBackends final : public VirtualScreens
{
public:
    using Bodies = std::map<ScreenBackend, VirtualScreens*>;

    ScreenBackends(SessionBus& bus, SessionFacts facts, Bodies bodies);

    void availability(std::weak_ptr<void> target, Answer then) override;
    std::unique_ptr<VirtualScreen> open(const ScreenWish& wish, Delegate delegate) override;

private:
    void choose(const Answer& then);
    void ask(const Answer& then);
    void askPortal(const ScreenAvailability& found, const Answer& then);
    VirtualScreens* bodyOf(ScreenBackend backend) const;

    SessionBus& mBus;
    SessionFacts mFacts;
    Bodies mBodies;
    ScreenBackend mChosen;
    QObject mAsker;
    std::shared_ptr<void> mLife = std::make_shared<int>();
};

} // namespace farview
