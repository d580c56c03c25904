#pragma once

#include "Platform/Types/AppearancePreferences.h"

#include <QPalette>
#include <QPointer>

namespace farview
{

class ReducedMotionStyle;

/// Gives all windows of the program the colours and the stillness that the user asked for of the
/// whole desktop. One per program; the application object must exist. Main thread only.
class DesktopLook
{
public:
    /// Takes effect at once, on windows that are open as well.
    void follow(const AppearancePreferences& preferences);

private:
    void followColors(ColorPreference preference);
    void followMotion(bool still);

    bool mIsOwnDark = false;
    QPalette mTheme; ///< what the theme's colours were, while ours are on
    QPointer<ReducedMotionStyle> mStyle;
};

} // namespace farview
