#pragma once

#include "Controls/Image.h"

#include <string>

namespace farview
{

/// How a picture's pixels meet those that are there already. The numbers are the platform's own.
enum class CompositingOperation {
    copy = 1,         ///< take their place, transparent ones too
    sourceOver = 2,   ///< cover them as far as they are opaque
    plusLighter = 13, ///< add up, to white at most
};

/// What a control draws its pictures on. In points; y grows upward.
class Canvas
{
public:
    virtual ~Canvas() = default;

    /// Draws the whole picture with its lower left corner at `point`, `fraction` of it opaque.
    virtual void compositeToPoint(const Image& image, Point point, CompositingOperation operation,
                                  double fraction) = 0;
};

/// A grey: 0 is black, 1 is white.
struct WhiteColor {
    double white = 0;
    double alpha = 1;

    bool operator==(const WhiteColor&) const = default;
};

enum class TextAlignment { left = 0, right = 1, center = 2 };

/// One line of text and how the whole of it looks. Its font is the canvas's.
struct AttributedString {
    std::string text;
    double expansion = 0; ///< the natural logarithm of how much wider the letters are
    TextAlignment alignment = TextAlignment::left;
    WhiteColor foregroundColor;

    bool operator==(const AttributedString&) const = default;
};

/// What a control draws its text on, with the control's own font. In points; y grows downward.
class TextCanvas
{
public:
    virtual ~TextCanvas() = default;

    /// All of the control.
    virtual Rect bounds() const = 0;
    /// Whether what lies below the control is dark, as on a desktop in the dark.
    virtual bool isDark() const = 0;
    /// The height of a line in the control's font.
    virtual double defaultLineHeight() const = 0;
    /// The line begins at the top of the rectangle, and may be higher than it.
    virtual void drawInRect(const AttributedString& string, const Rect& rect) = 0;

    virtual void saveGraphicsState() = 0;
    virtual void restoreGraphicsState() = 0;
    /// Whether letters may use the parts of a pixel. Belongs to the graphics state.
    virtual void setShouldSmoothFonts(bool should) = 0;
};

} // namespace farview
