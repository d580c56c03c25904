#include "Controls/Qt/ReducedMotionStyle.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

#include <utility>

namespace farview
{

void ReducedMotionStyle::setStill(bool still)
{
    if (std::exchange(mIsStill, still) == still)
        return;
    // What moves by itself asks the style again.
    for (QWidget* widget : QApplication::allWidgets()) {
        QEvent changed(QEvent::StyleChange);
        QCoreApplication::sendEvent(widget, &changed);
    }
}

int ReducedMotionStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                  QStyleHintReturn* returnData) const
{
    const bool isOfMotion = hint == SH_Widget_Animation_Duration || hint == SH_Widget_Animate;
    return mIsStill && isOfMotion ? 0 : QProxyStyle::styleHint(hint, option, widget, returnData);
}

} // namespace farview
