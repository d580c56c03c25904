#pragma once

#include "Controls/Canvas.h"
#include "Controls/Control.h"

/// A button whose title looks engraved; otherwise an ordinary button. The title is all that is
/// drawn, pressed or not. It must not be empty.
class FVEChiseledTextButton : public farview::Button
{
public:
    /// Draws the whole button, whatever part of it is asked for. Where it lies on dark ground the
    /// light layer is on top and the dark one is its shadow, so that the title can be read.
    void drawRect(const farview::Rect& dirtyRect, farview::TextCanvas& canvas) const;

    /// How much wider than usual the letters are, as the natural logarithm.
    static double expansion();

private:
    farview::AttributedString attributedTitle(farview::WhiteColor color) const;
};
