#include "Controls/Qt/ReducedMotionStyle.h"
#include "Tests/Controls/Qt/HandDrivenAnimations.h"
#include "Tests/Controls/Qt/SwitchSupport.h"

#include <QPainter>
#include <QTest>
#include <QWindow>

namespace farview::test
{
namespace
{

constexpr int margin = SwitchWidget::margin;

/// The switch in a window that is shown, on a clock that the test moves.
struct ShownSwitch : testing::Test {
    ShownSwitch()
    {
        widget->setImageSource({&pictures.bundle, pictures.files});
        view->setTarget(target);
        view->setAction({"press:"});
        EXPECT_TRUE(bindToWidget(view, widget));
        widget->resize(widget->sizeHint());
        window.resize(200, 100);
        window.show();
        window.activateWindow();
    }

    /// A place in the slider, from its upper left corner.
    static QPoint at(int x) { return {margin + x, margin + 15}; }
    void drag(int from, int to)
    {
        QTest::mousePress(widget, Qt::LeftButton, {}, at(from));
        move(from + (to - from) / 2);
        move(to);
        QTest::mouseRelease(widget, Qt::LeftButton, {}, at(to));
    }
    void move(int to)
    {
        QMouseEvent event(QEvent::MouseMove, at(to), widget->mapToGlobal(at(to)), Qt::NoButton,
                          Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(widget, &event);
    }
    double onOff() const { return view->slider()->onOffValue(); }

    HandDrivenAnimations clock;
    SwitchPictures pictures;
    std::shared_ptr<RecordingTarget> target = std::make_shared<RecordingTarget>();
    QWidget window;
    SwitchWidget* widget = new SwitchWidget(&window);
    std::shared_ptr<QLNOnOffView> view = std::make_shared<QLNOnOffView>();
};

TEST_F(ShownSwitch, TheKnobMovesForAFifthOfASecond)
{
    QTest::mouseClick(widget, Qt::LeftButton, {}, at(80));
    EXPECT_EQ(onOff(), 1.0);
    EXPECT_EQ(widget->position(), 0.0);
    clock.pass(100);
    EXPECT_NEAR(widget->position(), 0.5, 0.01);
    EXPECT_TRUE(view->slider()->animating());
    clock.pass(99);
    EXPECT_LT(widget->position(), 1.0);
    clock.pass(1);
    EXPECT_EQ(widget->position(), 1.0);
    EXPECT_FALSE(view->slider()->animating());
}

TEST_F(ShownSwitch, AClickWhileItMovesIsIgnored)
{
    QTest::mouseClick(widget, Qt::LeftButton, {}, at(80));
    clock.pass(100);
    QTest::mouseClick(widget, Qt::LeftButton, {}, at(80));
    QTest::mouseClick(widget, Qt::LeftButton, {}, at(10));
    QTest::keyClick(widget, Qt::Key_Space);
    EXPECT_EQ(onOff(), 1.0);
    EXPECT_EQ(target->calls["press:"], 1);
    clock.pass(100);
    QTest::mouseClick(widget, Qt::LeftButton, {}, at(80));
    EXPECT_EQ(onOff(), 0.0);
}

TEST_F(ShownSwitch, AShortDragSnapsBackAndALongerOneSwitches)
{
    drag(20, 29); // 0.15 of the 60 points that the knob can go
    EXPECT_EQ(onOff(), 0.0);
    EXPECT_NEAR(widget->position(), 0.15, 0.001);
    clock.pass(30);
    EXPECT_EQ(widget->position(), 0.0);
    drag(20, 35); // 0.25
    EXPECT_EQ(onOff(), 1.0);
    EXPECT_NEAR(widget->position(), 0.25, 0.001);
    clock.pass(150);
    EXPECT_EQ(widget->position(), 1.0);
}

TEST_F(ShownSwitch, ReadFromRightToLeftTheHandFindsTheKnobWhereTheEyesDo)
{
    widget->setLayoutDirection(Qt::RightToLeft);
    drag(80, 60); // the knob is at the right end, and goes left
    EXPECT_EQ(onOff(), 1.0);
}

TEST_F(ShownSwitch, AFingerSwitchesAndDragsLikeTheMouse)
{
    auto* finger = QTest::createTouchDevice();
    const auto touch = [&] { return QTest::touchEvent(window.windowHandle(), finger); };
    touch().press(1, widget->mapTo(&window, at(80)));
    touch().release(1, widget->mapTo(&window, at(80)));
    EXPECT_EQ(onOff(), 1.0);
    clock.pass(200);
    touch().press(1, widget->mapTo(&window, at(80)));
    touch().move(1, widget->mapTo(&window, at(60)));
    EXPECT_LT(widget->position(), 1.0);
    touch().move(1, widget->mapTo(&window, at(45)));
    touch().release(1, widget->mapTo(&window, at(45)));
    EXPECT_EQ(onOff(), 0.0);
}

TEST_F(ShownSwitch, OtherButtonsDoNothing)
{
    QTest::mouseClick(widget, Qt::RightButton, {}, at(80));
    EXPECT_EQ(onOff(), 0.0);
}

TEST_F(ShownSwitch, DisabledUnderTheHandItLetsGo)
{
    QTest::mousePress(widget, Qt::LeftButton, {}, at(20));
    move(60);
    EXPECT_GT(widget->position(), 0.5);
    view->setEnabled(false);
    clock.pass(200);
    EXPECT_EQ(widget->position(), 0.0);
    view->setEnabled(true);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, at(60));
    EXPECT_EQ(onOff(), 0.0);
    EXPECT_TRUE(target->calls.empty());
}

TEST_F(ShownSwitch, HiddenUnderTheHandItLetsGo)
{
    QTest::mousePress(widget, Qt::LeftButton, {}, at(20));
    move(60);
    window.hide();
    EXPECT_EQ(widget->position(), 0.0) << "at once: nobody sees it";
    EXPECT_FALSE(view->slider()->isTracking());
}

TEST_F(ShownSwitch, WhereNothingMayMoveTheKnobIsThereAtOnce)
{
    ReducedMotionStyle still(u"Fusion"_qs);
    widget->setStyle(&still);
    QTest::mouseClick(widget, Qt::LeftButton, {}, at(80));
    EXPECT_EQ(widget->position(), 1.0);
    EXPECT_FALSE(view->slider()->animating());
    widget->setStyle(nullptr);
}

TEST_F(ShownSwitch, WhereNobodySeesItTheKnobIsThereAtOnce)
{
    window.hide();
    view->setState(1);
    EXPECT_EQ(widget->position(), 1.0);
}

TEST_F(ShownSwitch, AnActionMayCloseTheWindow)
{
    target->during = [this] { delete std::exchange(widget, nullptr); };
    QTest::mouseClick(widget, Qt::LeftButton, {}, at(80));
    EXPECT_EQ(widget, nullptr);
    EXPECT_EQ(onOff(), 1.0);
}

// --- how it looks: compared with the same pictures put together here ---

struct PaintedSwitch : ShownSwitch {
    PaintedSwitch() { widget->setFocusPolicy(Qt::NoFocus); }

    QImage picture(const char* name, int ratio = 1) const
    {
        return QImage(pictures.path(name) + (ratio == 2 ? u"@2x.tiff"_qs : u".tiff"_qs))
            .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    }
    /// What the widget looks like on a screen of that ratio, with nothing below it.
    QImage painted(double ratio) const
    {
        QImage image((QSizeF(widget->size()) * ratio).toSize(),
                     QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::transparent);
        widget->render(&image, {}, {}, QWidget::RenderFlags());
        return image;
    }
    /// The well, the knob at that place, and the overlay, from the slider's upper left corner.
    QImage expected(int knobX, const char* knob = "SliderKnob") const
    {
        QImage image(widget->size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.translate(margin, margin);
        painter.drawImage(0, 0, picture("SliderWell"));
        painter.drawImage(knobX, -2, picture(knob));
        painter.drawImage(0, 0, picture("OverlayMask"));
        return image;
    }
    static void expectSame(const QImage& left, const QImage& right)
    {
        ASSERT_EQ(left.size(), right.size());
        int different = 0;
        for (int y = 0; y < left.height(); ++y) {
            for (int x = 0; x < left.width(); ++x) {
                const QRgb a = left.pixel(x, y);
                const QRgb b = right.pixel(x, y);
                const int most = std::max({qAbs(qRed(a) - qRed(b)), qAbs(qGreen(a) - qGreen(b)),
                                           qAbs(qBlue(a) - qBlue(b)), qAbs(qAlpha(a) - qAlpha(b))});
                different += most > 3;
            }
        }
        EXPECT_EQ(different, 0);
    }
};

TEST_F(PaintedSwitch, OffAndOnTheKnobReachesOverItsEnd)
{
    expectSame(painted(1.0), expected(-2));
    view->setState(1, false);
    expectSame(painted(1.0), expected(58));
}

TEST_F(PaintedSwitch, HeldItIsAnotherPicture)
{
    QTest::mousePress(widget, Qt::LeftButton, {}, at(20));
    expectSame(painted(1.0), expected(-2, "SliderKnobDown"));
}

TEST_F(PaintedSwitch, ReadFromRightToLeftItIsTheMirrorImage)
{
    const QImage before = painted(1.0);
    widget->setLayoutDirection(Qt::RightToLeft);
    expectSame(painted(1.0), before.mirrored(true, false));
}

TEST_F(PaintedSwitch, OnASharpScreenItIsDrawnFromTheSharpPictures)
{
    // A pattern that only the sharp picture can show.
    QImage striped(88, 68, QImage::Format_ARGB32);
    for (int y = 0; y < striped.height(); ++y) {
        for (int x = 0; x < striped.width(); ++x)
            striped.setPixelColor(x, y, x % 2 ? Qt::white : Qt::black);
    }
    ASSERT_TRUE(striped.save(pictures.path("SliderKnob@2x.tiff"), "TIFF"));
    const QImage image = painted(2.0);
    const int y = 2 * (margin + 15);
    const int x = 2 * (margin + 10);
    EXPECT_GT(qAbs(qRed(image.pixel(x, y)) - qRed(image.pixel(x + 1, y))), 150);
}

TEST_F(PaintedSwitch, InBetweenItIsDrawnFromTheSharpPicturesToo)
{
    pictures.save("SliderKnob", {44, 34}, Qt::red);
    QImage sharp(88, 68, QImage::Format_ARGB32);
    sharp.fill(Qt::green);
    ASSERT_TRUE(sharp.save(pictures.path("SliderKnob@2x.tiff"), "TIFF"));
    const QColor color = painted(1.5).pixelColor(45, 28);
    EXPECT_GT(color.green(), color.red());
}

TEST_F(PaintedSwitch, DisabledTheWellIsLightenedAndTheKnobIsHalfThere)
{
    view->setEnabled(false);
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(100, 120, 140));
    widget->setPalette(palette);
    QImage well = picture("SliderWell");
    QImage ground = well;
    QPainter tint(&ground);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(ground.rect(), QColor(100, 120, 140));
    tint.end();
    QImage image(widget->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.translate(margin, margin);
    painter.drawImage(0, 0, ground);
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    painter.drawImage(0, 0, well);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setOpacity(double(0.3F));
    painter.drawImage(0, 0, well);
    painter.setOpacity(0.5);
    painter.drawImage(-2, -2, picture("SliderKnob"));
    painter.setOpacity(1.0);
    painter.drawImage(0, 0, picture("OverlayMask"));
    painter.end();
    expectSame(painted(1.0), image);
}

TEST_F(PaintedSwitch, WithTheFocusTheKnobIsOverTheOverlayAndARingIsAroundIt)
{
    widget->setFocusPolicy(Qt::StrongFocus);
    widget->setFocus();
    ASSERT_TRUE(waitUntil([this] { return widget->hasFocus(); }));
    const QImage image = painted(1.0);
    EXPECT_EQ(image.pixelColor(margin + 20, margin + 15), QColor(200, 30, 30));
    const QColor ring = widget->palette().color(QPalette::Highlight);
    EXPECT_EQ(image.pixelColor(margin + 50, 2).rgb(), ring.rgb());
    widget->clearFocus();
    EXPECT_EQ(painted(1.0).pixelColor(margin + 70, 1).alpha(), 0);
}

TEST_F(PaintedSwitch, WithoutPicturesNothingIsDrawnAndNothingBreaks)
{
    SwitchWidget bare(nullptr);
    const auto other = std::make_shared<QLNOnOffView>();
    ASSERT_TRUE(bindToWidget(other, &bare));
    bare.resize(60, 30);
    QImage image(60, 30, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    bare.render(&image, {}, {}, QWidget::RenderFlags());
    EXPECT_EQ(image.pixelColor(20, 15).alpha(), 0);
    bare.click();
    EXPECT_EQ(other->state(), 1);
}

} // namespace
} // namespace farview::test
