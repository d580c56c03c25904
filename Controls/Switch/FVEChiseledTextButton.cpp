#include "Controls/Switch/FVEChiseledTextButton.h"

#include <cmath>

using farview::AttributedString;
using farview::Rect;
using farview::TextCanvas;
using farview::WhiteColor;

namespace
{

constexpr float textExpansion = 0.1F;
constexpr double lightAlpha = 0.75;
constexpr float darkAlpha = 0.7F;
constexpr float disabledDarkAlpha = 0.35F;
constexpr farview::Point darkOffset{0.0, -1.0};

/// One line, in the middle of the height at a whole point.
Rect textRect(const TextCanvas& canvas)
{
    const Rect bounds = canvas.bounds();
    const double inset = std::floor((bounds.size.height - canvas.defaultLineHeight()) * 0.5);
    return {{bounds.origin.x, bounds.origin.y + inset},
            {bounds.size.width, bounds.size.height - 2 * inset}};
}

Rect offset(const Rect& rect, farview::Point by)
{
    return {{rect.origin.x + by.x, rect.origin.y + by.y}, rect.size};
}

void drawWithoutSmoothing(const AttributedString& string, const Rect& rect, TextCanvas& canvas)
{
    canvas.saveGraphicsState();
    canvas.setShouldSmoothFonts(false);
    canvas.drawInRect(string, rect);
    canvas.restoreGraphicsState();
}

} // namespace

double FVEChiseledTextButton::expansion() { return textExpansion; }

AttributedString FVEChiseledTextButton::attributedTitle(WhiteColor color) const
{
    return {title(), textExpansion, farview::TextAlignment::center, color};
}

void FVEChiseledTextButton::drawRect(const Rect& /*dirtyRect*/, TextCanvas& canvas) const
{
    const Rect rect = textRect(canvas);
    const Rect darkRect = offset(rect, darkOffset);
    const auto dark = attributedTitle({0.0, isEnabled() ? darkAlpha : disabledDarkAlpha});
    if (canvas.isDark()) {
        drawWithoutSmoothing(dark, darkRect, canvas);
        canvas.drawInRect(attributedTitle({1.0, isEnabled() ? lightAlpha : lightAlpha / 2}), rect);
        return;
    }
    canvas.drawInRect(attributedTitle({1.0, lightAlpha}), rect);
    drawWithoutSmoothing(dark, darkRect, canvas);
}
