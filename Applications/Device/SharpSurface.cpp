#include "Applications/Device/SharpSurface.h"

#include <QPainter>

#include <qpa/qplatformwindow.h>
#include <wayland-client.h>
#include <wayland-protocols/viewporter.h>

#include <algorithm>
#include <utility>

namespace farview
{

SharpSurface::SharpSurface(QWindow& window, const Compositor& compositor, const QRect& area,
                           double ratio, Paint paint)
    : QWindow(&window), mArea(area), mRatio(ratio), mPaint(std::move(paint))
{
    setSurfaceType(RasterSurface);
    create();
    // Nothing of it takes input.
    setMask(QRect(-1, -1, 1, 1));
    mOwnRatio = devicePixelRatio();
    const QSizeF points = this->points();
    resize(qCeil(points.width()), qCeil(points.height()));
    mStore.resize(size());
    mViewport = compositor.newViewport(*this);
    uncoverTop(0);
    show();
}

bool SharpSurface::covers(const QRect& area, double ratio) const
{
    return area == mArea && ratio == mRatio && devicePixelRatio() == mOwnRatio;
}

QSizeF SharpSurface::points() const
{
    return QSizeF((QSizeF(mArea.size()) * mRatio).toSize()) / mOwnRatio;
}

void SharpSurface::uncoverTop(int height)
{
    const int free = std::min(height, mArea.height() - 1);
    const double top = free * mRatio / mOwnRatio;
    wp_viewport_set_source(mViewport.get(), 0, wl_fixed_from_double(top),
                           wl_fixed_from_double(points().width()),
                           wl_fixed_from_double(points().height() - top));
    wp_viewport_set_destination(mViewport.get(), mArea.width(), mArea.height() - free);
    setPosition(mArea.topLeft() + QPoint(0, free));
    update(whole());
}

void SharpSurface::repaint(const QRegion& region)
{
    mToPaint += region & whole();
    // Qt 6.4 tells a child window nothing when its window can be seen, or not any more.
    if (!handle()->isExposed() || mToPaint.isEmpty())
        return;
    const QRegion now = std::exchange(mToPaint, {});
    mStore.beginPaint(now);
    QPainter painter(mStore.paintDevice());
    mPaint(painter, now);
    painter.end();
    mStore.endPaint();
    mStore.flush(now);
}

void SharpSurface::update(const QRegion& region)
{
    mToPaint += region;
    requestUpdate();
}

bool SharpSurface::event(QEvent* event)
{
    if (event->type() == QEvent::UpdateRequest)
        repaint({});
    return QWindow::event(event);
}

void SharpSurface::exposeEvent(QExposeEvent*) { repaint(whole()); }

} // namespace farview
