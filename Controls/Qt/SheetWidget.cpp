#include "Controls/Qt/SheetWidget.h"

#include <QAbstractButton>
#include <QLayout>

#include <algorithm>

namespace farview
{

void SheetWidget::openOn(QWidget* window)
{
    if (isVisible())
        return;
    if (parentWidget() != window)
        setParent(window, windowFlags());
    growToFit();
    focusFirstTabStop();
    open();
}

void SheetWidget::growToFit()
{
    if (!layout())
        return;
    // Texts that wrap need more room in large type and in other languages than the file gives them.
    const int wide = std::max(width(), layout()->totalMinimumSize().width());
    resize(wide, std::max(height(), layout()->totalHeightForWidth(wide)));
}

void SheetWidget::focusFirstTabStop()
{
    for (QWidget* each = nextInFocusChain(); each != this; each = each->nextInFocusChain()) {
        if (isAncestorOf(each) && each->isEnabled() && each->focusPolicy() & Qt::TabFocus) {
            each->setFocus();
            return;
        }
    }
}

void SheetWidget::reject()
{
    for (auto* button : findChildren<QAbstractButton*>()) {
        if (button->property("cancels").toBool()) {
            button->click();
            return;
        }
    }
    QDialog::reject();
}

} // namespace farview
