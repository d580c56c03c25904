#pragma once

#include <QWidget>

#include <memory>

namespace farview
{

class View;

/// Holds widgets that are placed by frames rather than by a layout, so that an animated frame is
/// not undone by one. Their frames in the interface file are those of a container as wide as the
/// widest of them reaches.
class FrameContainer : public QWidget
{
    Q_OBJECT

public:
    explicit FrameContainer(QWidget* parent);

    /// Keeps that widget of this container at the view's frame (mirrored when reading from right to
    /// left); the frame grows and shrinks with the container. A widget with the dynamic property
    /// "trailing" keeps its size and moves along with the far edge instead.
    void hold(std::shared_ptr<View> view, QWidget* widget);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// The container became wider by that many points (narrower when negative) since it was last
    /// told, and is now that high.
    void stretched(int byWidth, int height);
    /// The reading direction changed: the widgets change sides.
    void mirrored();

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    int designWidth() const;

    int mToldWidth = -1;
};

} // namespace farview
