#pragma once

#include "Platform/Types/AppearancePreferences.h"

namespace farview
{

/// Whose colours a program wears.
enum class ColorScheme {
    theme,  ///< those of the desktop's theme, or the toolkit's where it has none
    ownDark ///< dark ones of our own
};

/// A theme that is dark stays as it is, whatever is preferred: somebody chose it. Only where dark
/// is wanted and the theme has none do we bring our own.
ColorScheme colorScheme(ColorPreference preference, bool themeIsDark);

/// Whether things should be there at once instead of moving there.
bool wantsStillness(const AppearancePreferences& preferences);

} // namespace farview
