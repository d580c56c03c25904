#include "Controls/Qt/SheetWidget.h"

#include <QAbstractButton>

namespace farview
{

void SheetWidget::openOn(QWidget* window)
{
    if (isVisible())
        return;
    if (parentWidget() != window)
        setParent(window, windowFlags());
    focusFirstTabStop();
    open();
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
