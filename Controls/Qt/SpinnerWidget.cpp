#include "Controls/Qt/SpinnerWidget.h"

#include "Controls/Qt/Switch/WidgetAnimator.h"

#include <QPainter>
#include <QTimerEvent>

#include <algorithm>
#include <chrono>

namespace farview
{
namespace
{

constexpr int spokes = 12;
constexpr std::chrono::milliseconds stepTime{83};   // one turn in a second
constexpr std::chrono::milliseconds pulseTime{900}; // slow enough to be no movement
constexpr double pulse[] = {0.75, 0.35};
constexpr double innerRadius = 0.5;  // of the outer one
constexpr double strokeWidth = 0.16; // of the outer radius
constexpr double faintest = 0.15;

} // namespace

SpinnerWidget::SpinnerWidget(QWidget* parent) : QWidget(parent) {}

void SpinnerWidget::setAnimating(bool animating)
{
    mAnimating = animating;
    updateTimer();
}

QSize SpinnerWidget::sizeHint() const
{
    const int side = fontMetrics().height() + 4;
    return {side, side};
}

void SpinnerWidget::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = std::min(width(), height()) / 2.0 - 1.0;
    painter.translate(width() / 2.0, height() / 2.0);
    if (wantsMotion(*this))
        painter.rotate(360.0 / spokes * mStep);
    QColor color = palette().color(QPalette::WindowText);
    for (int spoke = 0; spoke < spokes; ++spoke) {
        color.setAlphaF(opacityOf(spoke));
        painter.setPen(QPen(color, radius * strokeWidth, Qt::SolidLine, Qt::RoundCap));
        painter.rotate(360.0 / spokes);
        painter.drawLine(QPointF(0, -radius * innerRadius), QPointF(0, -radius * 0.92));
    }
}

double SpinnerWidget::opacityOf(int spoke) const
{
    return wantsMotion(*this) ? faintest + (1.0 - faintest) * (spoke + 1) / spokes
                              : pulse[mStep % 2];
}

void SpinnerWidget::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != mTimer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    mStep = (mStep + 1) % spokes;
    update();
}

void SpinnerWidget::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    updateTimer();
}

void SpinnerWidget::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    updateTimer();
}

void SpinnerWidget::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::StyleChange)
        return;
    mTimer.stop(); // the other pace
    updateTimer();
    update();
}

void SpinnerWidget::updateTimer()
{
    const bool turns = mAnimating && isVisible();
    if (!turns)
        mTimer.stop();
    else if (!mTimer.isActive())
        mTimer.start(static_cast<int>((wantsMotion(*this) ? stepTime : pulseTime).count()), this);
}

} // namespace farview
