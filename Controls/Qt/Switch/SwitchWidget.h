#pragma once

#include "Controls/Switch/QLNOnOffView.h"

#include <QWidget>

class QMouseEvent;

namespace farview
{

/// Shows the slider of a switch and hands it what mouse, fingers and keys do. Read from right to
/// left it is the mirror image, so that on is still where the word is. Empty without a slider.
class SwitchWidget : public QWidget
{
    Q_OBJECT

public:
    explicit SwitchWidget(QWidget* parent);

    /// The pictures for the slider that will be shown here.
    const QLNImageSource& imageSource() const { return mImageSource; }
    void setImageSource(QLNImageSource source) { mImageSource = std::move(source); }

    void setSlider(std::shared_ptr<QLNOnOff> slider);
    /// Shows what the slider is now, and tells assistive technology when on became off or off on.
    void refresh();

    /// Where the knob is drawn, 0.0 (off) to 1.0 (on).
    double position() const { return mSlider ? mSlider->doubleValue() : 0.0; }
    /// What the switch is announced as.
    bool isOn() const { return mSlider && mSlider->onOffValue() == 1.0; }
    /// Whether the knob is on its way; clicks are refused meanwhile.
    bool isMoving() const { return mSlider && mSlider->animating(); }
    /// What a click does, wherever.
    void click();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
    /// Around the slider, in points: for the knob, which reaches over the ends, and the focus ring.
    static constexpr int margin = 4;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    Point sliderPoint(const QMouseEvent& event) const;
    void cancelTracking();
    QImage composed(double pixelsPerPoint) const;

    QLNImageSource mImageSource;
    std::shared_ptr<QLNOnOff> mSlider;
    bool mAnnouncedOn = false;
};

} // namespace farview
