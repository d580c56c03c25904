#pragma once

#include "Controls/Canvas.h"

#include <QPainter>
#include <QWidget>

#include <vector>

namespace farview
{

/// A widget to draw text on, in the widget's own font. Lives as long as one painting.
class WidgetTextCanvas final : public TextCanvas
{
public:
    WidgetTextCanvas(QPainter& painter, const QWidget& widget);

    Rect bounds() const override;
    bool isDark() const override;
    double defaultLineHeight() const override;
    void drawInRect(const AttributedString& string, const Rect& rect) override;
    void saveGraphicsState() override { mSaved.push_back(mSmoothsFonts); }
    void restoreGraphicsState() override;
    void setShouldSmoothFonts(bool should) override { mSmoothsFonts = should; }

    /// How wide a text of that expansion is.
    static double width(const QString& text, double expansion, const QFontMetricsF& metrics);

private:
    QPainter& mPainter;
    const QWidget& mWidget;
    bool mSmoothsFonts = true;
    std::vector<bool> mSaved;
};

} // namespace farview
