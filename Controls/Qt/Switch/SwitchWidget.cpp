#include "Controls/Qt/Switch/SwitchWidget.h"

#include "Controls/Qt/Switch/ImageCanvas.h"

#include <QAccessible>
#include <QMouseEvent>
#include <QPainter>

#include <utility>

namespace farview
{
namespace
{

constexpr double ringWidth = 2.0;
constexpr double ringRadius = 10.0;

void drawFocusRing(QPainter& painter, const QRectF& area, const QColor& color)
{
    constexpr double inset = 1.0 + ringWidth / 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, ringWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), ringRadius, ringRadius);
}

} // namespace

SwitchWidget::SwitchWidget(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SwitchWidget::setSlider(std::shared_ptr<QLNOnOff> slider)
{
    mSlider = std::move(slider);
    mAnnouncedOn = isOn();
    updateGeometry();
    update();
}

void SwitchWidget::refresh()
{
    update();
    if (std::exchange(mAnnouncedOn, isOn()) == isOn())
        return;
    QAccessible::State changedState;
    changedState.checked = true;
    QAccessibleStateChangeEvent changed(this, changedState);
    QAccessible::updateAccessibility(&changed);
}

void SwitchWidget::click()
{
    if (const auto slider = mSlider)
        slider->performClick(nullptr);
}

QSize SwitchWidget::sizeHint() const
{
    const Size size = mSlider ? mSlider->bounds().size : Size{};
    return QSize(static_cast<int>(size.width), static_cast<int>(size.height)) +
           QSize(2 * margin, 2 * margin);
}

// --- what the user does ---

Point SwitchWidget::sliderPoint(const QMouseEvent& event) const
{
    const Size size = mSlider->bounds().size;
    const double x = event.position().x() - margin;
    return {isRightToLeft() ? size.width - x : x, size.height - (event.position().y() - margin)};
}

void SwitchWidget::mousePressEvent(QMouseEvent* event)
{
    if (const auto slider = mSlider; slider && event->button() == Qt::LeftButton)
        slider->mouseDown(sliderPoint(*event));
    update();
}

void SwitchWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (const auto slider = mSlider; slider && (event->buttons() & Qt::LeftButton))
        slider->mouseDragged(sliderPoint(*event));
}

void SwitchWidget::mouseReleaseEvent(QMouseEvent* event)
{
    update();
    if (const auto slider = mSlider; slider && event->button() == Qt::LeftButton)
        slider->mouseUp(sliderPoint(*event));
}

void SwitchWidget::keyPressEvent(QKeyEvent* event)
{
    const auto slider = mSlider;
    const int towardsOn = isRightToLeft() ? Qt::Key_Left : Qt::Key_Right;
    if (!slider)
        QWidget::keyPressEvent(event);
    else if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right)
        event->key() == towardsOn ? slider->moveRight(nullptr) : slider->moveLeft(nullptr);
    else if (event->key() == Qt::Key_Space)
        event->isAutoRepeat() ? void() : slider->performClick(nullptr);
    else
        QWidget::keyPressEvent(event);
}

bool SwitchWidget::event(QEvent* event)
{
    if (event->type() == QEvent::UngrabMouse)
        cancelTracking();
    return QWidget::event(event);
}

void SwitchWidget::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::EnabledChange)
        cancelTracking();
    QWidget::changeEvent(event);
}

void SwitchWidget::hideEvent(QHideEvent* event)
{
    cancelTracking();
    QWidget::hideEvent(event);
}

void SwitchWidget::cancelTracking()
{
    if (const auto slider = mSlider)
        slider->cancelTracking();
    update();
}

// --- how it looks ---

QImage SwitchWidget::composed(double pixelsPerPoint) const
{
    ImageCanvas canvas(sizeHint(), {margin, margin}, ImageCanvas::ratioFor(pixelsPerPoint),
                       palette().color(QPalette::Window));
    mSlider->cell()->setShowsFirstResponder(hasFocus());
    mSlider->cell()->drawWithFrame(mSlider->bounds(), *mSlider, canvas);
    return canvas.image();
}

void SwitchWidget::paintEvent(QPaintEvent* /*event*/)
{
    if (!mSlider || !mSlider->cell())
        return;
    QPainter painter(this);
    // Where it is painted counts, which may be a picture of the window.
    const QImage image = composed(painter.deviceTransform().m11());
    const QRectF area(QPointF(0, 0), sizeHint());
    if (hasFocus())
        drawFocusRing(painter, area, palette().color(QPalette::Highlight));
    if (isRightToLeft()) {
        painter.translate(area.width(), 0);
        painter.scale(-1, 1);
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(area, image, image.rect());
}

} // namespace farview
