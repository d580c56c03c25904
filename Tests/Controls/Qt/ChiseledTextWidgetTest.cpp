#include "Controls/Qt/Text/ChiseledTextWidget.h"
#include "Controls/Qt/Text/WidgetTextCanvas.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QPainter>
#include <QTest>

#include <cmath>

namespace farview::test
{
namespace
{

/// One layer, as it must come out.
struct Layer {
    QColor color;
    int down;
    bool smooth;
};

struct EngravedWord : testing::Test {
    EngravedWord()
    {
        QFont font = QApplication::font();
        font.setPixelSize(20);
        font.setBold(true);
        widget.setFont(font);
        widget.setText(QStringLiteral("Ein"));
        EXPECT_TRUE(bindToWidget(button, &widget));
        widget.resize(80, 40);
    }

    QImage painted(double ratio = 1.0)
    {
        QImage image((QSizeF(widget.size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(QColor(200, 210, 220));
        widget.render(&image, {}, {}, QWidget::RenderFlags());
        return image;
    }
    /// The same word put together here, layer by layer.
    QImage expected(const std::vector<Layer>& layers, double ratio = 1.0)
    {
        QImage image((QSizeF(widget.size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(QColor(200, 210, 220));
        QPainter painter(&image);
        const QFontMetrics metrics = widget.fontMetrics();
        const double wider = std::exp(double(0.1F));
        const double width = QFontMetricsF(widget.font()).horizontalAdvance(widget.text()) * wider;
        const int inset = (widget.height() - metrics.lineSpacing()) / 2;
        for (const auto& layer : layers) {
            QFont font = widget.font();
            if (!layer.smooth)
                font.setStyleStrategy(QFont::NoSubpixelAntialias);
            painter.setFont(font);
            painter.setPen(layer.color);
            painter.resetTransform();
            painter.translate(std::floor((widget.width() - width) / 2),
                              inset + metrics.ascent() + layer.down);
            painter.scale(wider, 1);
            painter.drawText(0, 0, widget.text());
        }
        return image;
    }
    static QColor white(double alpha) { return QColor::fromRgbF(1, 1, 1, alpha); }
    static QColor black(double alpha) { return QColor::fromRgbF(0, 0, 0, alpha); }

    ChiseledTextWidget widget{nullptr};
    std::shared_ptr<FVEChiseledTextButton> button = std::make_shared<FVEChiseledTextButton>();
};

TEST_F(EngravedWord, IsALightWordAndADarkOneAPointAboveIt)
{
    EXPECT_EQ(button->title(), "Ein");
    EXPECT_EQ(painted(), expected({{white(0.75), 0, true}, {black(0.7F), -1, false}}));
}

TEST_F(EngravedWord, OnASharpScreenThePointIsTwoPixels)
{
    EXPECT_EQ(painted(2.0), expected({{white(0.75), 0, true}, {black(0.7F), -1, false}}, 2.0));
}

TEST_F(EngravedWord, TheTestCanTellTheLayersApart)
{
    EXPECT_NE(painted(), expected({{white(0.75), 0, true}, {black(0.7F), 1, false}}));
    EXPECT_NE(painted(), expected({{white(0.75), 0, true}, {black(0.35F), -1, false}}));
    EXPECT_NE(painted(), expected({{black(0.7F), -1, false}, {white(0.75), 0, true}}));
}

TEST_F(EngravedWord, DisabledTheDarkLayerIsHalfAsStrong)
{
    button->setEnabled(false);
    EXPECT_FALSE(widget.isEnabled());
    EXPECT_EQ(painted(), expected({{white(0.75), 0, true}, {black(0.35F), -1, false}}));
}

TEST_F(EngravedWord, PressedItLooksTheSame)
{
    widget.setFocusPolicy(Qt::NoFocus);
    const QImage before = painted();
    widget.setDown(true);
    EXPECT_EQ(painted(), before);
}

TEST_F(EngravedWord, InTheDarkTheLightLayerIsOnTop)
{
    widget.setPalette(QPalette(QColor(53, 53, 53), QColor(42, 42, 42)));
    EXPECT_EQ(painted(), expected({{black(0.7F), -1, false}, {white(0.75), 0, true}}));
}

TEST_F(EngravedWord, ALineHigherThanTheButtonStaysInTheMiddle)
{
    widget.resize(80, widget.fontMetrics().lineSpacing() - 6);
    EXPECT_EQ(painted(), expected({{white(0.75), 0, true}, {black(0.7F), -1, false}}));
}

TEST_F(EngravedWord, ItsLettersAreATenthWider)
{
    const QFontMetricsF metrics(widget.font());
    const double natural = metrics.horizontalAdvance(widget.text());
    EXPECT_NEAR(
        WidgetTextCanvas::width(widget.text(), FVEChiseledTextButton::expansion(), metrics) /
            natural,
        1.10517, 0.0001);
    EXPECT_GT(widget.sizeHint().width(), natural * 1.105);
}

TEST_F(EngravedWord, AnotherTitleIsShown)
{
    const QImage before = painted();
    button->setTitle("Aus");
    EXPECT_EQ(widget.text(), QStringLiteral("Aus"));
    EXPECT_NE(painted(), before);
}

TEST_F(EngravedWord, MouseAndKeyboardPressIt)
{
    const auto target = std::make_shared<RecordingTarget>();
    button->setTarget(target);
    button->setAction({"press:"});
    QTest::mouseClick(&widget, Qt::LeftButton);
    QTest::keyClick(&widget, Qt::Key_Space);
    EXPECT_EQ(target->calls["press:"], 2);
    EXPECT_EQ(target->sender, button.get());
}

TEST_F(EngravedWord, WithoutATitleNothingIsDrawn)
{
    button->setTitle("");
    EXPECT_EQ(painted(), expected({}));
}

} // namespace
} // namespace farview::test
