#include "Controls/Qt/Forms/SheetWidget.h"

#include <QAbstractButton>
#include <QCloseEvent>
#include <QLayout>

#include <algorithm>

namespace farview
{

void SheetWidget::openOn(QWidget* window)
{
    if (isVisible())
        return;
    prepare(window);
    if (window)
        window->window()->installEventFilter(this);
    open();
}

bool SheetWidget::eventFilter(QObject* watched, QEvent* event)
{
    // Where no window manager sees to it, a click makes the window behind active, which takes no
    // input: the keyboard would lead nowhere.
    if (event->type() == QEvent::WindowActivate && isVisible() && isModal())
        QMetaObject::invokeMethod(this, &SheetWidget::takeKeyboard, Qt::QueuedConnection);
    return QDialog::eventFilter(watched, event);
}

void SheetWidget::takeKeyboard()
{
    if (isVisible())
        activateWindow();
}

void SheetWidget::openBeside(QWidget* window)
{
    prepare(window);
    show();
    raise();
    activateWindow();
}

void SheetWidget::prepare(QWidget* window)
{
    if (parentWidget() != window)
        setParent(window, windowFlags());
    growToFit();
    focusFirstTabStop();
}

void SheetWidget::closeEvent(QCloseEvent* event)
{
    if (isModal())
        return QDialog::closeEvent(event);
    event->accept();
    Q_EMIT closedByUser();
}

bool SheetWidget::event(QEvent* event)
{
    const bool handled = QDialog::event(event);
    // A text that comes while it is open may need more room.
    if (event->type() == QEvent::LayoutRequest && isVisible())
        growToFit();
    return handled;
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
        const bool cancels = each->property("cancels").toBool();
        if (isAncestorOf(each) && !cancels && each->isEnabled() && !each->isHidden() &&
            each->focusPolicy() & Qt::TabFocus) {
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
