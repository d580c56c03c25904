#include "Controls/Qt/SwitchWidget.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

#include <algorithm>

namespace farview
{
namespace
{

constexpr double trackRatio = 1.9; // width to height
constexpr int focusMargin = 3;
constexpr int knobMargin = 2;

QColor mixed(const QColor& first, const QColor& second, double share)
{
    return QColor::fromRgbF(first.redF() + (second.redF() - first.redF()) * share,
                            first.greenF() + (second.greenF() - first.greenF()) * share,
                            first.blueF() + (second.blueF() - first.blueF()) * share);
}

} // namespace

SwitchWidget::SwitchWidget(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, [this] { emit movedTo(!mOn); });
}

void SwitchWidget::setPosition(double position)
{
    mPosition = std::clamp(position, 0.0, 1.0);
    update();
}

void SwitchWidget::setOn(bool on)
{
    if (mOn == on)
        return;
    mOn = on;
    QAccessible::State changedState;
    changedState.checked = true;
    QAccessibleStateChangeEvent changed(this, changedState);
    QAccessible::updateAccessibility(&changed);
}

QSize SwitchWidget::sizeHint() const
{
    const int height = fontMetrics().height() + 6;
    return {static_cast<int>(height * trackRatio) + 2 * focusMargin, height + 2 * focusMargin};
}

QRectF SwitchWidget::knob(const QRectF& track) const
{
    const QRectF inside = track.adjusted(knobMargin, knobMargin, -knobMargin, -knobMargin);
    const double travel = inside.width() - inside.height();
    const double place = isRightToLeft() ? 1.0 - mPosition : mPosition;
    return {inside.left() + travel * place, inside.top(), inside.height(), inside.height()};
}

void SwitchWidget::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QColor text = palette().color(group, QPalette::WindowText);
    const QColor off = mixed(palette().color(group, QPalette::Window), text, 0.28);
    const QColor on = palette().color(group, QPalette::Highlight);
    const QRectF track =
        QRectF(rect()).adjusted(focusMargin, focusMargin, -focusMargin, -focusMargin);
    painter.setPen(Qt::NoPen);
    painter.setBrush(mixed(off, on, mPosition));
    painter.drawRoundedRect(track, track.height() / 2, track.height() / 2);
    painter.setBrush(isEnabled() ? Qt::white : palette().color(group, QPalette::Light));
    painter.drawEllipse(knob(track));
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1.5));
        const QRectF ring = QRectF(rect()).adjusted(1, 1, -1, -1);
        painter.drawRoundedRect(ring, ring.height() / 2, ring.height() / 2);
    }
}

void SwitchWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Left)
        emit movedTo(isRightToLeft());
    else if (event->key() == Qt::Key_Right)
        emit movedTo(!isRightToLeft());
    else
        QAbstractButton::keyPressEvent(event);
}

} // namespace farview
