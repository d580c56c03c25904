#pragma once

#include "Platform/Types/ScreenWay.h"
#include "Platform/Types/WindowKeeping.h"

#include <span>
#include <vector>

namespace farview
{

enum class Ability {
    no,
    yes,
    withARight, ///< where the user's administrator has allowed it
    untested,   ///< meant to, but nobody has seen it
};

/// What works on a desktop whose monitors are made in one way. Tests open a monitor on each desktop
/// that they can run, and compare.
struct DesktopAbilities {
    ScreenWay way;
    const char* desktop; ///< for people
    const char* tested;  ///< the versions on which the tests have run; empty: on none
    Ability monitor;     ///< one is added
    Ability size;        ///< it takes another size in use, also that of a device that was turned
    Ability scale;       ///< it may be enlarged
    Ability pointer;     ///< the pointer is apart from the picture, and faster
    Ability touch;       ///< several fingers at once
    Ability keys;        ///< the device's keyboard types
    WindowKeeping windows;
    Ability crash; ///< it goes when Farview dies; no: when Farview starts again
};

/// One for each way, in the order of the enumeration.
std::span<const DesktopAbilities> desktopAbilities();
const DesktopAbilities& desktopAbilities(ScreenWay way);

/// Something that a device's user could expect, and that such a desktop does not have.
struct DesktopLimit {
    const char* name; ///< for programs; never translated, never changed
    const char* text; ///< the English one, the key of its translations
};
std::vector<DesktopLimit> limitsOf(ScreenWay way);

} // namespace farview
