#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace farview
{

/// Turning spokes for work of unknown length. Costs nothing while it is hidden or stands still.
class SpinnerWidget : public QWidget
{
    Q_OBJECT

public:
    explicit SpinnerWidget(QWidget* parent);

    void setAnimating(bool animating);
    /// Whether it is turning right now, on screen.
    bool isTurning() const { return mTimer.isActive(); }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void updateTimer();

    QBasicTimer mTimer;
    int mStep = 0;
    bool mAnimating = false;
};

} // namespace farview
