#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace farview
{

/// Turning spokes for work of unknown length. Where nothing may move they brighten and fade in
/// their places instead. Costs nothing while it is hidden or stands still.
class SpinnerWidget : public QWidget
{
    Q_OBJECT

public:
    explicit SpinnerWidget(QWidget* parent);

    void setAnimating(bool animating);
    /// Whether it shows right now, on screen, that something is under way.
    bool isTurning() const { return mTimer.isActive(); }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void updateTimer();
    double opacityOf(int spoke) const;

    QBasicTimer mTimer;
    int mStep = 0;
    bool mAnimating = false;
};

} // namespace farview
