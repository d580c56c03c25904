#include "Common/Rules/DesktopAbilities.h"

#include <array>

namespace farview
{
namespace
{

using enum Ability;

// In the order of the enumeration.
constexpr std::array abilities{
    DesktopAbilities{.way = ScreenWay::spareOutput,
                     .desktop = "X11, with an output to spare",
                     .tested = "Xorg 1.21.1",
                     .monitor = yes,
                     .size = yes,
                     .scale = no,
                     .pointer = yes,
                     .touch = withARight,
                     .keys = yes,
                     .windows = WindowKeeping::byFarview,
                     .crash = yes},
    DesktopAbilities{.way = ScreenWay::namedMonitor,
                     .desktop = "X11, without",
                     .tested = "Xorg 1.21.1",
                     .monitor = yes,
                     .size = yes,
                     .scale = no,
                     .pointer = yes,
                     .touch = withARight,
                     .keys = yes,
                     .windows = WindowKeeping::byFarview,
                     .crash = yes},
    DesktopAbilities{.way = ScreenWay::gnome,
                     .desktop = "GNOME",
                     .tested = "Mutter 43, 48",
                     .monitor = yes,
                     .size = yes,
                     .scale = yes,
                     .pointer = yes,
                     .touch = yes,
                     .keys = yes,
                     .windows = WindowKeeping::desktop,
                     .crash = yes},
    DesktopAbilities{.way = ScreenWay::sway,
                     .desktop = "sway, from 1.8 on",
                     .tested = "sway 1.10",
                     .monitor = yes,
                     .size = yes,
                     .scale = yes,
                     .pointer = no,
                     .touch = no,
                     .keys = yes,
                     .windows = WindowKeeping::byFarview,
                     .crash = no},
    DesktopAbilities{.way = ScreenWay::swayKept,
                     .desktop = "sway before 1.8",
                     .tested = "sway 1.7",
                     .monitor = yes,
                     .size = yes,
                     .scale = yes,
                     .pointer = no,
                     .touch = no,
                     .keys = yes,
                     .windows = WindowKeeping::byFarview,
                     .crash = no},
    DesktopAbilities{.way = ScreenWay::hyprland,
                     .desktop = "Hyprland",
                     .tested = "",
                     .monitor = untested,
                     .size = untested,
                     .scale = untested,
                     .pointer = no,
                     .touch = no,
                     .keys = untested,
                     .windows = WindowKeeping::nobody,
                     .crash = no},
    DesktopAbilities{.way = ScreenWay::plasma,
                     .desktop = "KDE Plasma",
                     .tested = "",
                     .monitor = untested,
                     .size = untested,
                     .scale = untested,
                     .pointer = untested,
                     .touch = yes,
                     .keys = yes,
                     .windows = WindowKeeping::desktop,
                     .crash = untested},
    DesktopAbilities{.way = ScreenWay::portal,
                     .desktop = "another desktop, through its portal",
                     .tested = "",
                     .monitor = untested,
                     .size = untested,
                     .scale = no,
                     .pointer = untested,
                     .touch = untested,
                     .keys = untested,
                     .windows = WindowKeeping::nobody,
                     .crash = untested},
    DesktopAbilities{.way = ScreenWay::existingScreen,
                     .desktop = "the same, where its portal adds no screens",
                     .tested = "",
                     .monitor = no,
                     .size = no,
                     .scale = no,
                     .pointer = untested,
                     .touch = untested,
                     .keys = untested,
                     .windows = WindowKeeping::nobody,
                     .crash = yes},
};
static_assert(abilities.size() == static_cast<std::size_t>(ScreenWay::existingScreen) + 1);

} // namespace

std::span<const DesktopAbilities> desktopAbilities() { return abilities; }

const DesktopAbilities& desktopAbilities(ScreenWay way)
{
    return abilities.at(static_cast<std::size_t>(way));
}

std::vector<DesktopLimit> limitsOf(ScreenWay way)
{
    const auto& desktop = desktopAbilities(way);
    const bool movesNoWindows = desktop.windows == WindowKeeping::nobody;
    std::vector<DesktopLimit> limits;
    if (desktop.monitor == no)
        limits.push_back(
            {"no-new-screen",
             "This desktop adds no screen: the device shows one of yours, which you choose."});
    else if (desktop.size == no)
        limits.push_back({"fixed-size", "The screen keeps its size when the device is turned."});
    if (desktop.monitor != no && desktop.scale == no)
        limits.push_back({"no-enlarging", "This desktop cannot enlarge the device's screen."});
    if (desktop.touch == no)
        limits.push_back({"one-finger", "Only one finger at a time gets through to this desktop, "
                                        "as its pointer."});
    if (desktop.keys == no)
        limits.push_back({"no-typing", "The device's keyboard does not reach this desktop."});
    if (desktop.monitor != no && movesNoWindows)
        limits.push_back({"windows-stay", "Your desktop lets no program move windows."});
    return limits;
}

} // namespace farview
