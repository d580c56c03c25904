#include "Controls/Qt/DesktopLook.h"

#include "Common/Rules/Appearance.h"
#include "Controls/Qt/DarkPalette.h"
#include "Controls/Qt/Darkness.h"
#include "Controls/Qt/ReducedMotionStyle.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

#include <utility>

namespace farview
{

namespace
{

/// The toolkit does this itself only while the program's loop runs: a window that is made and not
/// yet shown would keep the colours of before.
void tellWindows()
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        QEvent changed(QEvent::ApplicationPaletteChange);
        QCoreApplication::sendEvent(window, &changed);
    }
}

} // namespace

void DesktopLook::follow(const AppearancePreferences& preferences)
{
    followMotion(wantsStillness(preferences));
    followColors(preferences.colors);
}

void DesktopLook::followColors(ColorPreference preference)
{
    if (!mIsOwnDark)
        mTheme = QApplication::palette();
    const bool ownDark = colorScheme(preference, isDark(mTheme)) == ColorScheme::ownDark;
    if (std::exchange(mIsOwnDark, ownDark) == ownDark)
        return;
    QApplication::setPalette(ownDark ? darkPalette() : QPalette());
    tellWindows();
}

void DesktopLook::followMotion(bool still)
{
    if (mStyle)
        mStyle->setStill(still);
    else if (still)
        QApplication::setStyle(mStyle = new ReducedMotionStyle(QApplication::style()->name()));
}

} // namespace farview
