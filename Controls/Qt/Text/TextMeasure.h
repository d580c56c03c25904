#pragma once

#include <QFont>
#include <QSize>
#include <QString>

class QPaintDevice;

namespace farview
{

/// The room that a plain text takes in lines of some width, in pixels.
struct TextRoom {
    QSize size; ///< what `QFontMetrics::boundingRect` says
    int widestWord =
        0; ///< the least width that breaks no word; of a text that does not wrap its own
    int tallestLine = 0; ///< of a text in one paragraph: its height if it were one line
};

/// `device`: where the text will be painted. Main thread only.
TextRoom measureText(const QString& text, const QFont& font, const QPaintDevice* device, bool wraps,
                     int width);

} // namespace farview
