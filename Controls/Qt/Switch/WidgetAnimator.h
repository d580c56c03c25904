#pragma once

#include "Controls/Switch/Animator.h"

#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

namespace farview
{

QEasingCurve easingCurve(const Animation& animation);

/// Whether the widget's style lets things move.
bool wantsMotion(const QWidget& widget);
/// The same, of a widget that is on the screen.
bool playsAnimations(const QWidget& widget);

/// Plays movements on a widget, on the toolkit's clock. Where nothing may move everything is there
/// at once. May outlive the widget.
class WidgetAnimator final : public Animator
{
public:
    explicit WidgetAnimator(QWidget* widget);

    void play(double from, double to, Duration duration, const Animation& animation,
              std::function<void(double)> show) override;
    void stop() override;

private:
    QPointer<QWidget> mWidget;
    QVariantAnimation mAnimation;
    std::function<void(double)> mShow;
};

} // namespace farview
