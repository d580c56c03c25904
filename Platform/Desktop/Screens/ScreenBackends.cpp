#include "Platform/Desktop/Screens/ScreenBackends.h"

#include "Platform/Posix/Environment.h"

#include <filesystem>
#include <utility>

namespace farview
{
namespace
{

bool isNamed(const char* name, const std::string& desktop)
{
    return (":" + desktop + ":").find(std::string(":") + name + ":") != std::string::npos;
}

bool isWayland(const SessionFacts& facts)
{
    return !facts.waylandDisplay.empty() || facts.type == "wayland";
}

/// A portal asks the user, and does it in the desktop's name.
bool canPortalHelp(ScreenObstacle obstacle)
{
    return obstacle == ScreenObstacle::protocolMissing || obstacle == ScreenObstacle::notPermitted;
}

} // namespace

ScreenBackend screenBackendFor(const SessionFacts& facts)
{
    if (!isWayland(facts))
        return facts.display.empty() ? ScreenBackend::none : ScreenBackend::x11;
    if (facts.isSandboxed)
        return ScreenBackend::portal;
    if (facts.hasMutter || isNamed("GNOME", facts.desktop))
        return ScreenBackend::mutter;
    if (!facts.swaySocket.empty() || !facts.hyprland.empty())
        return ScreenBackend::wlroots;
    return isNamed("KDE", facts.desktop) ? ScreenBackend::kwin : ScreenBackend::portal;
}

SessionFacts sessionFacts()
{
    const Environment environment(EnvironmentUse::honoured);
    std::error_code error;
    return {
        .type = environment.value("XDG_SESSION_TYPE"),
        .waylandDisplay = environment.value("WAYLAND_DISPLAY"),
        .display = environment.value("DISPLAY"),
        .desktop = environment.value("XDG_CURRENT_DESKTOP"),
        .swaySocket = environment.value("SWAYSOCK"),
        .hyprland = environment.value("HYPRLAND_INSTANCE_SIGNATURE"),
        .isSandboxed =
            std::filesystem::exists("/.flatpak-info", error) || !environment.value("SNAP").empty(),
    };
}

ScreenBackends::ScreenBackends(SessionBus& bus, SessionFacts facts, Bodies bodies)
    : mBus(bus), mFacts(std::move(facts)), mBodies(std::move(bodies)),
      mChosen(screenBackendFor(mFacts))
{
    if (isWayland(mFacts))
        choose([](auto&) {});
}

VirtualScreens* ScreenBackends::bodyOf(ScreenBackend backend) const
{
    const auto body = mBodies.find(backend);
    return body == mBodies.end() ? nullptr : body->second;
}

void ScreenBackends::availability(std::weak_ptr<void> target, Answer then)
{
    choose([target = std::move(target), then = std::move(then)](const auto& found) {
        if (const auto kept = target.lock())
            then(found);
    });
}

void ScreenBackends::choose(const Answer& then)
{
    mBus.askForOwner(QStringLiteral("org.gnome.Mutter.ScreenCast"), &mAsker,
                     [this, then](const QString& owner) {
                         mFacts.hasMutter = !owner.isEmpty();
                         mChosen = screenBackendFor(mFacts);
                         ask(then);
                     });
}

void ScreenBackends::ask(const Answer& then)
{
    auto* body = bodyOf(mChosen);
    if (!body)
        return then({std::nullopt, ScreenObstacle::noDesktop});
    body->availability(mLife, [this, then](const auto& found) {
        if (found.way || !isWayland(mFacts) || !canPortalHelp(found.obstacle))
            then(found);
        else
            askPortal(found, then);
    });
}

void ScreenBackends::askPortal(const ScreenAvailability& found, const Answer& then)
{
    auto* portal = bodyOf(ScreenBackend::portal);
    if (!portal || mChosen == ScreenBackend::portal)
        return then(found);
    portal->availability(mLife, [this, found, then](const auto& answer) {
        if (answer.way)
            mChosen = ScreenBackend::portal;
        then(answer.way ? answer : found);
    });
}

std::unique_ptr<VirtualScreen> ScreenBackends::open(const ScreenWish& wish, Delegate delegate)
{
    auto* body = bodyOf(mChosen);
    return body ? body->open(wish, std::move(delegate)) : nullptr;
}

} // namespace farview
