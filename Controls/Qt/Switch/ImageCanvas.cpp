#include "Controls/Qt/Switch/ImageCanvas.h"

#include "Controls/Qt/Switch/ImageFiles.h"

#include <QPainter>

namespace farview
{
namespace
{

QPainter::CompositionMode modeFor(CompositingOperation operation)
{
    switch (operation) {
    case CompositingOperation::copy:
        return QPainter::CompositionMode_Source;
    case CompositingOperation::plusLighter:
        return QPainter::CompositionMode_Plus;
    case CompositingOperation::sourceOver:
        break;
    }
    return QPainter::CompositionMode_SourceOver;
}

} // namespace

ImageCanvas::ImageCanvas(QSize size, Point origin, int ratio, QColor ground)
    : mImage(size * ratio, QImage::Format_ARGB32_Premultiplied), mOrigin(origin), mRatio(ratio),
      mGround(ground)
{
    mImage.setDevicePixelRatio(ratio);
    mImage.fill(Qt::transparent);
}

void ImageCanvas::compositeToPoint(const Image& image, Point point, CompositingOperation operation,
                                   double fraction)
{
    const auto* drawn = dynamic_cast<const FileImage*>(&image);
    if (!drawn)
        return;
    const QImage& pixels = drawn->file().pixels(mRatio);
    const Size size = image.size();
    const double height = mImage.height() / mImage.devicePixelRatio();
    const QRectF place(mOrigin.x + point.x, height - mOrigin.y - point.y - size.height, size.width,
                       size.height);
    if (operation == CompositingOperation::plusLighter)
        layGround(pixels, place);
    QPainter painter(&mImage);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setCompositionMode(modeFor(operation));
    painter.setOpacity(fraction);
    painter.drawImage(place, pixels, pixels.rect());
}

/// The window's colour below what is drawn, in that shape.
void ImageCanvas::layGround(const QImage& shape, const QRectF& place)
{
    QImage ground = shape;
    QPainter tint(&ground);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(ground.rect(), mGround);
    tint.end();
    QPainter painter(&mImage);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    painter.drawImage(place, ground, ground.rect());
}

} // namespace farview
