#include "Controls/Qt/Switch/WidgetAnimator.h"

#include <QStyle>

#include <cmath>

namespace farview
{

QEasingCurve easingCurve(const Animation& /*animation*/) { return QEasingCurve::InOutQuad; }

bool wantsMotion(const QWidget& widget)
{
    return widget.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &widget) > 0;
}

bool playsAnimations(const QWidget& widget) { return widget.isVisible() && wantsMotion(widget); }

WidgetAnimator::WidgetAnimator(QWidget* widget) : mWidget(widget)
{
    QObject::connect(&mAnimation, &QVariantAnimation::valueChanged, &mAnimation,
                     [this](const QVariant& value) {
                         const auto show = mShow; // it may end this movement
                         if (show)
                             show(value.toDouble());
                     });
}

void WidgetAnimator::play(double from, double to, Duration duration, const Animation& animation,
                          std::function<void(double)> show)
{
    stop();
    const int milliseconds = static_cast<int>(std::lround(duration.count() * 1000));
    if (!mWidget || !playsAnimations(*mWidget) || milliseconds == 0) {
        show(to);
        return;
    }
    mAnimation.setStartValue(from);
    mAnimation.setEndValue(to);
    mAnimation.setDuration(milliseconds);
    mAnimation.setEasingCurve(easingCurve(animation));
    mShow = std::move(show);
    mAnimation.start();
}

void WidgetAnimator::stop()
{
    mShow = nullptr;
    mAnimation.stop();
}

} // namespace farview
