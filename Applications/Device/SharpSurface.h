#pragma once

#include "Applications/Device/Compositor.h"

#include <QBackingStore>
#include <QRegion>
#include <QWindow>

#include <functional>

class QPainter;

namespace farview
{

/// Covers a part of a window, pixel for pixel, where Qt draws the window itself larger than it is
/// shown: on Wayland, with one and a half pixels to a point, for example. What the user does is the
/// window's. Main thread only.
class SharpSurface final : public QWindow
{
public:
    using Paint = std::function<void(QPainter& painter, const QRegion& region)>;

    /// Begins to cover `area` of `window`, which owns it and is to be drawn anew then. `ratio` is
    /// what there really are of pixels to a point. `paint` is called with regions in points that
    /// have `devicePixelRatio()` pixels.
    SharpSurface(QWindow& window, const Compositor& compositor, const QRect& area, double ratio,
                 Paint paint);

    double ratio() const { return mRatio; }
    /// Whether it is still what would be made.
    bool covers(const QRect& area, double ratio) const;
    /// Leaves so many points of the area uncovered at its top, with the window's next drawing.
    void uncoverTop(int height);
    /// All of it.
    QRect whole() const { return {{}, size()}; }
    /// Paints at once, as far as it can be seen.
    void repaint(const QRegion& region);
    /// Paints when the compositor is ready for it.
    void update(const QRegion& region);

protected:
    bool event(QEvent* event) override;
    void exposeEvent(QExposeEvent* event) override;

private:
    QSizeF points() const;

    QRect mArea; ///< in points of the window
    double mRatio;
    double mOwnRatio = 1; ///< the pixels to one of Qt's points
    Paint mPaint;
    QBackingStore mStore{this};
    QRegion mToPaint;
    WaylandHandle<wp_viewport> mViewport;
};

} // namespace farview
