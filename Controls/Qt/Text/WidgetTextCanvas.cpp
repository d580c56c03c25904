#include "Controls/Qt/Text/WidgetTextCanvas.h"

#include "Controls/Qt/Darkness.h"
#include "Controls/Qt/Text/PlainText.h"

#include <cmath>

namespace farview
{
namespace
{

double leftEdge(TextAlignment alignment, const Rect& rect, double width)
{
    const double rest = rect.size.width - width;
    switch (alignment) {
    case TextAlignment::center:
        return rect.origin.x + std::floor(rest / 2);
    case TextAlignment::right:
        return rect.origin.x + rest;
    case TextAlignment::left:
        break;
    }
    return rect.origin.x;
}

} // namespace

WidgetTextCanvas::WidgetTextCanvas(QPainter& painter, const QWidget& widget)
    : mPainter(painter), mWidget(widget)
{
}

Rect WidgetTextCanvas::bounds() const
{
    return {{}, {double(mWidget.width()), double(mWidget.height())}};
}

bool WidgetTextCanvas::isDark() const { return farview::isDark(mWidget.palette()); }

double WidgetTextCanvas::defaultLineHeight() const { return mWidget.fontMetrics().lineSpacing(); }

double WidgetTextCanvas::width(const QString& text, double expansion, const QFontMetricsF& metrics)
{
    return metrics.horizontalAdvance(text) * std::exp(expansion);
}

void WidgetTextCanvas::drawInRect(const AttributedString& string, const Rect& rect)
{
    const QString text = plainLine(string.text);
    QFont font = mWidget.font();
    // Only where they are switched off: the desktop's own setting holds otherwise.
    if (!mSmoothsFonts)
        font.setStyleStrategy(QFont::NoSubpixelAntialias);
    const QFontMetricsF metrics(font, &mWidget);
    const double left = leftEdge(string.alignment, rect, width(text, string.expansion, metrics));
    const double white = string.foregroundColor.white;
    mPainter.save();
    mPainter.setFont(font);
    mPainter.setPen(QColor::fromRgbF(white, white, white, string.foregroundColor.alpha));
    mPainter.translate(left, rect.origin.y + mWidget.fontMetrics().ascent());
    mPainter.scale(std::exp(string.expansion), 1.0);
    mPainter.drawText(QPointF(0, 0), text);
    mPainter.restore();
}

void WidgetTextCanvas::restoreGraphicsState()
{
    if (mSaved.empty())
        return;
    mSmoothsFonts = mSaved.back();
    mSaved.pop_back();
}

} // namespace farview
