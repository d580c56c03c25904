#include "Controls/Qt/Switch/ImageCanvas.h"
#include "Tests/Controls/Qt/SwitchSupport.h"

#include <gmock/gmock.h>

namespace farview::test
{
namespace
{

struct Part {
    double red, green, blue, alpha; // premultiplied, 0 to 1
};

Part partOf(QColor color)
{
    const double alpha = color.alphaF();
    return {color.redF() * alpha, color.greenF() * alpha, color.blueF() * alpha, alpha};
}

template <typename Rule> Part combined(Part source, Part below, Rule rule)
{
    const auto each = [&](double s, double b) { return rule(s, b, source.alpha); };
    return {each(source.red, below.red), each(source.green, below.green),
            each(source.blue, below.blue), each(source.alpha, below.alpha)};
}

Part over(Part source, Part below)
{
    return combined(source, below,
                    [](double s, double b, double alpha) { return s + b * (1 - alpha); });
}

Part plus(Part source, Part below)
{
    return combined(source, below, [](double s, double b, double) { return std::min(1.0, s + b); });
}

Part faded(Part part, double fraction)
{
    return {part.red * fraction, part.green * fraction, part.blue * fraction,
            part.alpha * fraction};
}

class ImageCanvasTest : public testing::Test
{
protected:
    ImageCanvasTest() { pictures.save("Square", {4, 3}, color); }

    std::shared_ptr<Image> square()
    {
        return pictures.files->imageWithContentsOfFile(pictures.path("Square.tiff").toStdString());
    }
    void expectPixel(const ImageCanvas& canvas, QPoint place, Part expected)
    {
        const QRgb pixel =
            reinterpret_cast<const QRgb*>(canvas.image().constScanLine(place.y()))[place.x()];
        EXPECT_NEAR(qRed(pixel), expected.red * 255, 2);
        EXPECT_NEAR(qGreen(pixel), expected.green * 255, 2);
        EXPECT_NEAR(qBlue(pixel), expected.blue * 255, 2);
        EXPECT_NEAR(qAlpha(pixel), expected.alpha * 255, 2);
    }

    const QColor color{200, 100, 40, 128};
    const QColor ground{180, 190, 200};
    const Part nothing{0, 0, 0, 0};
    SwitchPictures pictures;
};

TEST_F(ImageCanvasTest, BeginsTransparent)
{
    expectPixel(ImageCanvas({8, 8}, {0, 0}, 1, ground), {4, 4}, nothing);
}

TEST_F(ImageCanvasTest, PutsThePicturesLowerLeftCornerAtThePoint)
{
    ImageCanvas canvas({10, 10}, {1, 2}, 1, ground);
    canvas.compositeToPoint(*square(), {2, 1}, CompositingOperation::sourceOver, 1.0);
    // From the lower left corner: 3 to the right and 3 up; 4 wide and 3 high.
    const QRect place(3, 10 - 3 - 3, 4, 3);
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 10; ++x)
            expectPixel(canvas, {x, y}, place.contains(x, y) ? partOf(color) : nothing);
    }
}

TEST_F(ImageCanvasTest, OnSharpScreensAPointIsTwoPixels)
{
    ImageCanvas canvas({10, 10}, {1, 2}, 2, ground);
    EXPECT_EQ(canvas.image().size(), QSize(20, 20));
    canvas.compositeToPoint(*square(), {2, 1}, CompositingOperation::sourceOver, 1.0);
    expectPixel(canvas, {6, 8}, partOf(color));
    expectPixel(canvas, {13, 13}, partOf(color));
    expectPixel(canvas, {5, 8}, nothing);
    expectPixel(canvas, {14, 13}, nothing);
    EXPECT_EQ(ImageCanvas::ratioFor(1.0), 1);
    EXPECT_EQ(ImageCanvas::ratioFor(1.5), 2);
    EXPECT_EQ(ImageCanvas::ratioFor(2.0), 2);
}

TEST_F(ImageCanvasTest, CopyingTakesThePlaceOfWhatIsThere)
{
    ImageCanvas canvas({4, 3}, {0, 0}, 1, ground);
    canvas.compositeToPoint(*square(), {}, CompositingOperation::sourceOver, 1.0);
    canvas.compositeToPoint(*square(), {}, CompositingOperation::copy, 1.0);
    expectPixel(canvas, {1, 1}, partOf(color));
}

TEST_F(ImageCanvasTest, SourceOverCoversAsFarAsItIsOpaque)
{
    ImageCanvas canvas({4, 3}, {0, 0}, 1, ground);
    canvas.compositeToPoint(*square(), {}, CompositingOperation::copy, 1.0);
    canvas.compositeToPoint(*square(), {}, CompositingOperation::sourceOver, 0.5);
    expectPixel(canvas, {1, 1}, over(faded(partOf(color), 0.5), partOf(color)));
}

TEST_F(ImageCanvasTest, PlusLighterAddsToTheWindowsColour)
{
    ImageCanvas canvas({4, 3}, {0, 0}, 1, ground);
    canvas.compositeToPoint(*square(), {}, CompositingOperation::plusLighter, 1.0);
    const Part window = partOf(ground);
    const Part below = faded(window, color.alphaF());
    expectPixel(canvas, {1, 1}, plus(partOf(color), below));
}

TEST_F(ImageCanvasTest, PlusLighterAddsToWhatWasDrawn)
{
    ImageCanvas canvas({4, 3}, {0, 0}, 1, ground);
    canvas.compositeToPoint(*square(), {}, CompositingOperation::copy, 1.0);
    canvas.compositeToPoint(*square(), {}, CompositingOperation::plusLighter, 1.0);
    const Part below = over(partOf(color), faded(partOf(ground), color.alphaF()));
    expectPixel(canvas, {1, 1}, plus(partOf(color), below));
}

TEST_F(ImageCanvasTest, WhatComesFromNoFileIsLeftOut)
{
    class OtherImage final : public Image
    {
        Size size() const override { return {4, 3}; }
    };
    ImageCanvas canvas({4, 3}, {0, 0}, 1, ground);
    canvas.compositeToPoint(OtherImage(), {}, CompositingOperation::copy, 1.0);
    expectPixel(canvas, {1, 1}, nothing);
}

} // namespace
} // namespace farview::test
