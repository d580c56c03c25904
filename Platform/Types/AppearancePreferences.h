#pragma once

namespace farview
{

enum class ColorPreference { none, dark, light };

/// What the user asked of the looks of every program, as far as the desktop tells.
struct AppearancePreferences {
    ColorPreference colors = ColorPreference::none;
    bool reducedMotion = false; ///< asked for in so many words
    bool animations = true;     ///< the desktop's own switch for them

    bool operator==(const AppearancePreferences&) const = default;
};

} // namespace farview
