#pragma once

#include "Controls/Canvas.h"

#include <QColor>
#include <QImage>

namespace farview
{

/// A premultiplied picture to compose a control in before it comes onto the window: composing
/// straight onto a window would leave black corners.
class ImageCanvas final : public Canvas
{
public:
    /// `size` and `origin` in points; the origin is where the control's lower left corner is, from
    /// the picture's own. `ratio`: 1 or 2 pixels to a point. `ground` is the colour of the window.
    ImageCanvas(QSize size, Point origin, int ratio, QColor ground);

    /// Draws pictures that come from files; any other is left out. What is added to is the
    /// window's own colour wherever nothing was drawn yet.
    void compositeToPoint(const Image& image, Point point, CompositingOperation operation,
                          double fraction) override;

    const QImage& image() const { return mImage; }

    /// How many pixels to a point suit a screen of that ratio: in between, more and then less.
    static int ratioFor(double devicePixelRatio) { return devicePixelRatio > 1.0 ? 2 : 1; }

private:
    void layGround(const QImage& shape, const QRectF& place);

    QImage mImage;
    Point mOrigin;
    int mRatio;
    QColor mGround;
};

} // namespace farview
