#include "Controls/Qt/PopUp/PopUpWidget.h"

#include "Controls/Qt/Text/PlainText.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QToolTip>
#include <QWheelEvent>

namespace farview
{

PopUpWidget::PopUpWidget(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void PopUpWidget::setTitle(const QString& title)
{
    if (mTitle == title)
        return;
    mTitle = title;
    updateGeometry();
    update();
    QAccessibleEvent changed(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&changed);
}

void PopUpWidget::open(QMenu* menu, QAction* current)
{
    menu->setParent(this, menu->windowFlags());
    menu->setMinimumWidth(width());
    menu->setAccessibleName(accessibleName());
    // A window of its own does not take it over by itself.
    menu->setLayoutDirection(layoutDirection());
    // Else the click that closes the menu would open it again.
    menu->setAttribute(Qt::WA_NoMouseReplay);
    connect(menu, &QMenu::aboutToHide, this, [this, menu] {
        mMenu = nullptr;
        update();
        menu->deleteLater();
    });
    mMenu = menu;
    menu->popup(menuPlace(*menu));
    if (current)
        menu->setActiveAction(current);
    update();
}

QPoint PopUpWidget::menuPlace(const QMenu& menu) const
{
    const int overhang = menu.sizeHint().width() - width();
    const int left = isRightToLeft() && overhang > 0 ? -overhang : 0;
    return mapToGlobal(QPoint(left, height()));
}

void PopUpWidget::request()
{
    if (isEnabled() && !mMenu)
        emit openRequested();
}

bool PopUpWidget::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty())
        return QAbstractButton::event(event);
    const QStyleOptionComboBox option = styleOption();
    const QString fullTitle = option.currentText == mTitle ? QString() : mTitle;
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                       plainToolTip(fullTitle.toStdString()), this);
    return true;
}

void PopUpWidget::paintEvent(QPaintEvent* /*event*/)
{
    QStylePainter painter(this);
    const QStyleOptionComboBox option = styleOption();
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void PopUpWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        request();
}

void PopUpWidget::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F4:
        request();
        return;
    default:
        QAbstractButton::keyPressEvent(event);
    }
}

void PopUpWidget::wheelEvent(QWheelEvent* event)
{
    event->accept();
    request();
}

QStyleOptionComboBox PopUpWidget::styleOption() const
{
    QStyleOptionComboBox option;
    option.initFrom(this);
    option.editable = false;
    option.frame = true;
    option.subControls = QStyle::SC_All;
    if (mMenu) {
        option.activeSubControls = QStyle::SC_ComboBoxArrow;
        option.state |= QStyle::State_Sunken;
    }
    const QRect field =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    option.currentText = fontMetrics().elidedText(mTitle, Qt::ElideRight, field.width() - 4);
    return option;
}

QSize PopUpWidget::sizeFor(int textWidth) const
{
    QStyleOptionComboBox option;
    option.initFrom(this);
    // A form may give it more room above and below its title, in the property "roomAbove".
    const int room = 2 * property("roomAbove").toInt();
    const QSize text(textWidth, fontMetrics().height() + 2 + room);
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, text, this);
}

QSize PopUpWidget::sizeHint() const { return sizeFor(fontMetrics().horizontalAdvance(mTitle)); }

QSize PopUpWidget::minimumSizeHint() const { return sizeFor(fontMetrics().averageCharWidth() * 8); }

} // namespace farview
