#include "Common/Rules/Appearance.h"

namespace farview
{

ColorScheme colorScheme(ColorPreference preference, bool themeIsDark)
{
    return preference == ColorPreference::dark && !themeIsDark ? ColorScheme::ownDark
                                                               : ColorScheme::theme;
}

bool wantsStillness(const AppearancePreferences& preferences)
{
    return preferences.reducedMotion || !preferences.animations;
}

} // namespace farview
