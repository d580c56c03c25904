#pragma once

#include <QApplication>
#include <QEvent>
#include <QProxyStyle>
#include <QWidget>

#include <utility>

namespace farview
{

/// A style that lets nothing move when it is told so, the toolkit's own controls included;
/// otherwise like the style of that name.
class ReducedMotionStyle : public QProxyStyle
{
public:
    explicit ReducedMotionStyle(const QString& name) : QProxyStyle(name) {}

    /// Still from the beginning.
    void setStill(bool still)
    {
        if (std::exchange(mIsStill, still) == still)
            return;
        // What moves by itself asks the style again.
        for (QWidget* widget : QApplication::allWidgets()) {
            QEvent changed(QEvent::StyleChange);
            QCoreApplication::sendEvent(widget, &changed);
        }
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override
    {
        const bool isOfMotion = hint == SH_Widget_Animation_Duration || hint == SH_Widget_Animate;
        return mIsStill && isOfMotion ? 0
                                      : QProxyStyle::styleHint(hint, option, widget, returnData);
    }

private:
    bool mIsStill = true;
};

} // namespace farview
