#include "Applications/Device/ScreenView.h"

#include "Applications/Device/PictureImage.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

/// More rectangles than these cost more than what lies between them.
constexpr std::size_t mostParts = 500;

QRect toRect(const PixelRect& part) { return {part.x, part.y, part.width, part.height}; }

} // namespace

ScreenView::ScreenView(const Compositor& compositor) : mCompositor(compositor)
{
    setObjectName(QStringLiteral("screenView"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setTabletTracking(true);
    setAttribute(Qt::WA_AcceptTouchEvents);
    setFocusPolicy(Qt::ClickFocus);
    // What is typed goes away letter by letter; nobody here knows what stands before it.
    setInputMethodHints(Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
}

void ScreenView::beginPicture(const PictureReceiver& picture)
{
    mPicture = &picture;
    followScreen();
}

void ScreenView::endPicture()
{
    mPicture = nullptr;
    mDrawn = nullptr;
    followScreen();
}

QSize ScreenView::pictureSize() const
{
    return mPicture ? QSize(mPicture->picture().width(), mPicture->picture().height()) : QSize();
}

void ScreenView::setFitted(bool isFitted)
{
    mIsFitted = isFitted;
    updatePainted(paintedRect());
}

// --- where it is painted ---------------------------------------------------------------------

void ScreenView::followScreen()
{
    update();
    const double ratio = mCompositor.ratio(*screen());
    if (!mPicture || !isVisible() || !mCompositor.hasViewports() || ratio == devicePixelRatioF()) {
        delete mSharp;
        return;
    }
    const QRect area(mapTo(window(), QPoint()), size());
    if (!mSharp || !mSharp->covers(area, ratio)) {
        delete mSharp;
        mSharp = new SharpSurface(
            *window()->windowHandle(), mCompositor, area, ratio,
            [this](QPainter& painter, const QRegion& region) { paint(painter, region); });
    }
    mSharp->uncoverTop(std::max(0, childrenRect().bottom() + 1));
}

bool ScreenView::event(QEvent* event)
{
    const bool isTaken = QWidget::event(event);
    if (event->type() == QEvent::Show || event->type() == QEvent::Hide ||
        event->type() == QEvent::Resize)
        followScreen();
    return isTaken;
}

double ScreenView::paintedRatio() const
{
    return mSharp ? mSharp->devicePixelRatio() : devicePixelRatioF();
}

QRect ScreenView::paintedRect() const { return mSharp ? mSharp->whole() : rect(); }

void ScreenView::updatePainted(const QRegion& region)
{
    if (mSharp)
        mSharp->update(region);
    else
        update(region);
}

// --- the picture -----------------------------------------------------------------------------

PicturePlace ScreenView::place() const
{
    const auto pointer = mPicture->cursorPlace();
    return placedPicture((QSizeF(size()) * ratio()).toSize(), pictureSize(), mIsFitted,
                         {pointer.x, pointer.y});
}

void ScreenView::showFrame(const std::vector<PixelRect>& changed, std::function<void()> drawn)
{
    mDrawn = std::move(drawn);
    const QRegion seen = inPoints(changed) & paintedRect();
    const QRegion painted = seen.isEmpty() ? QRegion(0, 0, 1, 1) : seen;
    if (mSharp)
        mSharp->repaint(painted);
    else
        repaint(painted);
}

void ScreenView::movePointer()
{
    const PicturePlace now = place();
    if (now.area != mPlace.area)
        return updatePainted(paintedRect());
    updatePainted(mPointer);
    mPointer = inPoints(now.touched(pointerPart()));
    updatePainted(mPointer);
}

/// In pixels of the picture. Empty when there is none.
QRect ScreenView::pointerPart() const
{
    const auto& cursor = mPicture->cursor();
    if (!cursor)
        return {};
    const auto place = mPicture->cursorPlace();
    return {place.x - cursor->hotspot.x, place.y - cursor->hotspot.y, cursor->image.width(),
            cursor->image.height()};
}

QRegion ScreenView::inPoints(const std::vector<PixelRect>& parts) const
{
    const PicturePlace now = place();
    QRegion region;
    QRect bounds;
    for (const auto& each : parts) {
        const QRect part = inPoints(now.touched(toRect(each)));
        bounds |= part;
        if (parts.size() <= mostParts)
            region += part;
    }
    return parts.size() <= mostParts ? region : bounds;
}

QRect ScreenView::inPoints(const QRect& pixels) const
{
    const double ratio = paintedRatio();
    return QRectF(pixels.x() / ratio, pixels.y() / ratio, pixels.width() / ratio,
                  pixels.height() / ratio)
        .toAlignedRect();
}

void ScreenView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    if (mPicture && !mSharp)
        return paint(painter, event->region());
    painter.fillRect(event->rect(), Qt::black);
    // What it could not paint while the window was not to be seen.
    if (mSharp)
        mSharp->update({});
}

void ScreenView::paint(QPainter& painter, const QRegion& region)
{
    mPlace = place();
    mPointer = inPoints(mPlace.touched(pointerPart()));
    painter.setRenderHint(QPainter::SmoothPixmapTransform, mPlace.isScaled());
    for (const QRect& part : region)
        drawPart(painter, part);
    // It is handed over when this event is over.
    if (mDrawn)
        QMetaObject::invokeMethod(
            this, [this] { tellDrawn(); }, Qt::QueuedConnection);
}

void ScreenView::drawPart(QPainter& painter, const QRect& part) const
{
    // From here on in pixels of the screen.
    const double ratio = paintedRatio();
    painter.setClipRect(part);
    painter.save();
    painter.scale(1 / ratio, 1 / ratio);
    const QRect pixels =
        QRectF(part.x() * ratio, part.y() * ratio, part.width() * ratio, part.height() * ratio)
            .toAlignedRect();
    painter.fillRect(pixels, Qt::black);
    painter.setClipRect(mPlace.area, Qt::IntersectClip);
    // Received pixels say nothing of their opacity: added to black they are opaque.
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    painter.drawImage(mPlace.area, imageOf(mPicture->picture()));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    if (const auto& cursor = mPicture->cursor())
        painter.drawImage(mPlace.onGlass(pointerPart()), imageOf(cursor->image));
    painter.restore();
}

void ScreenView::tellDrawn()
{
    if (const auto drawn = std::exchange(mDrawn, nullptr))
        drawn();
}

} // namespace farview
