#pragma once

#include <QAbstractButton>

namespace farview
{

/// A two-position switch. It only reports what the user wants; where the knob is, is told to it.
class SwitchWidget : public QAbstractButton
{
    Q_OBJECT

public:
    explicit SwitchWidget(QWidget* parent);

    /// Where the knob is drawn, 0.0 (off) to 1.0 (on).
    double position() const { return mPosition; }
    void setPosition(double position);
    /// What the switch is announced as.
    bool isOn() const { return mOn; }
    void setOn(bool on);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    void movedTo(bool on);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QRectF knob(const QRectF& track) const;

    double mPosition = 0.0;
    bool mOn = false;
};

} // namespace farview
