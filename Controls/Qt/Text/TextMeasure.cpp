#include "Controls/Qt/Text/TextMeasure.h"

#include <QFontMetricsF>
#include <QTextLayout>
#include <QTextOption>

#include <algorithm>
#include <cmath>

namespace farview
{
namespace
{

/// How far a glyph may stand out behind its word.
constexpr qreal reach = 1;

int wholePixels(qreal length) { return static_cast<int>(std::ceil(length)); }

} // namespace

TextRoom measureText(const QString& text, const QFont& font, const QPaintDevice* device, bool wraps,
                     int width)
{
    QTextLayout layout(QString(text).replace(u'\n', QChar(QChar::LineSeparator)), font, device);
    QTextOption option;
    option.setWrapMode(wraps ? QTextOption::WordWrap : QTextOption::ManualWrap);
    layout.setTextOption(option);
    const qreal leading = QFontMetricsF(font, device).leading();
    qreal widest = 0;
    qreal tallest = 0;
    qreal height = -leading;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(std::max(width, 0));
        // Lines are painted at whole pixels.
        height = std::ceil(height + leading) + line.height();
        widest = std::max(widest, line.naturalTextWidth());
        tallest = std::max(tallest, line.height());
    }
    layout.endLayout();
    return {{wholePixels(widest), wholePixels(height)},
            wholePixels(wraps ? layout.minimumWidth() + reach : widest),
            wholePixels(tallest)};
}

} // namespace farview
