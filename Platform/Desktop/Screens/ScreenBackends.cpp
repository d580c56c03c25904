#include "Platform/Desktop/Screens/ScreenBackends.h"

#include "Platform/Posix/Environment.h"

#include <utility>

namespace farview
{
namespace
{

bool isGnome(const std::string& desktop)
{
    return (":" + desktop + ":").find(":GNOME:") != std::string::npos;
}

} // namespace

ScreenBackend screenBackendFor(const SessionFacts& facts)
{
    if (!facts.waylandDisplay.empty() || facts.type == "wayland")
        return facts.hasMutter || isGnome(facts.desktop) ? ScreenBackend::mutter
                                                         : ScreenBackend::none;
    return facts.display.empty() ? ScreenBackend::none : ScreenBackend::x11;
}

SessionFacts sessionFacts()
{
    const Environment environment(EnvironmentUse::honoured);
    return {environment.value("XDG_SESSION_TYPE"), environment.value("WAYLAND_DISPLAY"),
            environment.value("DISPLAY"), environment.value("XDG_CURRENT_DESKTOP")};
}

ScreenBackends::ScreenBackends(SessionBus& bus, SessionFacts facts, VirtualScreens& x11,
                               VirtualScreens& mutter)
    : mBus(bus), mFacts(std::move(facts)), mX11(x11), mMutter(mutter)
{
    lookForMutter([] {});
}

void ScreenBackends::lookForMutter(std::function<void()> then)
{
    mBus.askForOwner(QStringLiteral("org.gnome.Mutter.ScreenCast"), &mAsker,
                     [this, then = std::move(then)](bool isOwned) {
                         mFacts.hasMutter = isOwned;
                         then();
                     });
}

VirtualScreens* ScreenBackends::chosen() const
{
    switch (screenBackendFor(mFacts)) {
    case ScreenBackend::x11:
        return &mX11;
    case ScreenBackend::mutter:
        return &mMutter;
    case ScreenBackend::none:
        break;
    }
    return nullptr;
}

void ScreenBackends::availability(std::weak_ptr<void> target, Answer then)
{
    lookForMutter([this, target = std::move(target), then = std::move(then)] {
        if (auto* screens = chosen())
            screens->availability(target, then);
        else if (const auto kept = target.lock())
            then({std::nullopt, ScreenObstacle::noDesktop});
    });
}

std::unique_ptr<VirtualScreen> ScreenBackends::open(const ScreenWish& wish, Delegate delegate)
{
    auto* screens = chosen();
    return screens ? screens->open(wish, std::move(delegate)) : nullptr;
}

} // namespace farview
