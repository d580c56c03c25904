#include "Controls/Qt/ScreenMap/ScreenMapWidget.h"

#include "Controls/Qt/Accessible/AccessibleWidgets.h"
#include "Controls/Qt/DarkPalette.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QAccessible>
#include <QTest>

namespace farview::test
{
namespace
{

constexpr PixelRect mainScreen = pixelRect(0, 0, 1920, 1080);
constexpr PixelRect other = pixelRect(1920, 0, 1280, 1024);
constexpr PixelRect onTheRight = pixelRect(3200, 0, 800, 600);
constexpr PixelRect onTheLeft = pixelRect(-800, 0, 800, 600);

/// The map in a window that is shown, with two screens of the user.
struct ShownMap : testing::Test {
    ShownMap()
    {
        installAccessibleWidgets();
        map->setTarget(target);
        map->setAction({"press:"});
        widget->setProperty("moveLeft", u"Move to the left"_qs);
        EXPECT_TRUE(bindToWidget(map, widget));
        map->setScreens(onTheRight, {mainScreen, other});
        widget->resize(widget->sizeHint());
        window.resize(widget->size());
        window.show();
        window.activateWindow();
        widget->setFocus();
    }

    int asked() { return target->calls["press:"]; }
    QPointF monitor() const { return widget->drawnMonitor().center(); }
    QPoint mouseOn(const PixelRect& place) const { return widget->drawn(place).center().toPoint(); }
    void press() { QTest::mousePress(widget, Qt::LeftButton, {}, monitor().toPoint()); }
    void move(QPoint to)
    {
        QMouseEvent event(QEvent::MouseMove, to, widget->mapToGlobal(to), Qt::NoButton,
                          Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(widget, &event);
    }
    void release(QPoint at) { QTest::mouseRelease(widget, Qt::LeftButton, {}, at); }
    void dragTo(QPoint place)
    {
        press();
        move(place);
        release(place);
    }
    QColor colourAt(QPointF place) const
    {
        return widget->grab().toImage().pixelColor(place.toPoint());
    }

    std::shared_ptr<RecordingTarget> target = std::make_shared<RecordingTarget>();
    std::shared_ptr<ScreenMap> map = std::make_shared<ScreenMap>();
    QWidget window;
    ScreenMapWidget* widget = new ScreenMapWidget(&window);
};

TEST_F(ShownMap, ScreensStandAsTheyDoOnTheDeskAndKeepTheirProportions)
{
    const QRectF first = widget->drawn(mainScreen);
    const QRectF second = widget->drawn(other);
    const QRectF device = widget->drawnMonitor();
    EXPECT_NEAR(first.right(), second.left(), 0.01);
    EXPECT_NEAR(second.right(), device.left(), 0.01);
    EXPECT_NEAR(first.width() / first.height(), 1920.0 / 1080, 0.01);
    EXPECT_TRUE(QRectF(widget->rect()).contains(device | first));
}

TEST_F(ShownMap, ThereIsRoomOnEverySideSoNothingChangesItsSize)
{
    const QRectF before = widget->drawn(mainScreen);
    for (const auto& place :
         {onTheLeft, pixelRect(0, -600, 800, 600), pixelRect(0, 1080, 800, 600)}) {
        map->setScreens(place, {mainScreen, other});
        EXPECT_EQ(widget->drawn(mainScreen), before);
        EXPECT_TRUE(QRectF(widget->rect()).contains(widget->drawnMonitor()));
    }
}

TEST_F(ShownMap, TheReadingDirectionMovesNoScreen)
{
    const QRectF before = widget->drawnMonitor();
    window.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(widget->drawnMonitor(), before);
    EXPECT_EQ(colourAt(before.center()), widget->palette().color(QPalette::Highlight));
}

TEST_F(ShownMap, TheDevicesScreenIsFilledInLightAndDark)
{
    for (const bool dark : {false, true}) {
        window.setPalette(dark ? darkPalette() : QPalette());
        EXPECT_EQ(colourAt(monitor()), widget->palette().color(QPalette::Highlight));
        EXPECT_EQ(colourAt(widget->drawn(mainScreen).center()),
                  widget->palette().color(QPalette::Window));
    }
}

TEST_F(ShownMap, DraggingAsksForTheSideWhereItIsLetGo)
{
    dragTo(mouseOn(onTheLeft));
    EXPECT_EQ(asked(), 1);
    EXPECT_EQ(map->chosenSide(), ScreenSide::left);
    dragTo(mouseOn(pixelRect(600, 1500, 800, 600)));
    EXPECT_EQ(map->chosenSide(), ScreenSide::below);
}

TEST_F(ShownMap, WhileItIsDraggedItStandsWhereItWouldCome)
{
    press();
    move(mouseOn(onTheLeft));
    EXPECT_EQ(widget->drawnMonitor(), widget->drawn(onTheLeft));
    EXPECT_EQ(asked(), 0);
    release(mouseOn(onTheRight));
    EXPECT_EQ(widget->drawnMonitor(), widget->drawn(onTheRight));
    EXPECT_EQ(asked(), 0) << "it was dragged back";
}

TEST_F(ShownMap, OnlyTheDevicesScreenCanBeDraggedAndOnlyByTheLeftButton)
{
    QTest::mousePress(widget, Qt::LeftButton, {}, mouseOn(mainScreen));
    move(mouseOn(onTheLeft));
    release(mouseOn(onTheLeft));
    QTest::mousePress(widget, Qt::RightButton, {}, monitor().toPoint());
    move(mouseOn(onTheLeft));
    QTest::mouseRelease(widget, Qt::RightButton, {}, mouseOn(onTheLeft));
    EXPECT_EQ(asked(), 0);
}

TEST_F(ShownMap, EscapeAndHidingLetGoOfIt)
{
    press();
    move(mouseOn(onTheLeft));
    QTest::keyClick(widget, Qt::Key_Escape);
    release(mouseOn(onTheLeft));
    press();
    move(mouseOn(onTheLeft));
    widget->hide();
    widget->show();
    release(mouseOn(onTheLeft));
    EXPECT_EQ(asked(), 0);
}

TEST_F(ShownMap, ArrowKeysAskForASide)
{
    for (const auto& [key, side] :
         {std::pair{Qt::Key_Left, ScreenSide::left}, std::pair{Qt::Key_Right, ScreenSide::right},
          std::pair{Qt::Key_Up, ScreenSide::above}, std::pair{Qt::Key_Down, ScreenSide::below}}) {
        QTest::keyClick(widget, key);
        EXPECT_EQ(map->chosenSide(), side);
    }
    EXPECT_EQ(asked(), 4);
}

TEST_F(ShownMap, CtrlZGoesBack)
{
    QTest::keyClick(widget, Qt::Key_Left);
    map->setScreens(onTheLeft, {mainScreen, other});
    QTest::keyClick(widget, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(map->chosenSide(), ScreenSide::right);
    EXPECT_EQ(asked(), 2);
}

TEST_F(ShownMap, ARefusedPlaceSpringsBackAfterAWhile)
{
    QTest::keyClick(widget, Qt::Key_Left);
    EXPECT_EQ(widget->drawnMonitor(), widget->drawn(onTheLeft));
    EXPECT_TRUE(waitUntil([&] { return widget->drawnMonitor() == widget->drawn(onTheRight); }));
}

TEST_F(ShownMap, WhatTheMapIsToldOutranksWhatWasAskedFor)
{
    QTest::keyClick(widget, Qt::Key_Left);
    const auto below = pixelRect(0, 1080, 800, 600);
    map->setScreens(below, {mainScreen, other});
    EXPECT_EQ(widget->drawnMonitor(), widget->drawn(below));
}

TEST_F(ShownMap, IsEmptyAndDeafUntilItKnowsAScreen)
{
    map->setScreens({}, {});
    QTest::keyClick(widget, Qt::Key_Left);
    QTest::mouseClick(widget, Qt::LeftButton);
    widget->grab();
    EXPECT_EQ(asked(), 0);
}

TEST_F(ShownMap, WhereverProgramsSayThatScreensAreThereIsAPicture)
{
    map->setScreens(pixelRect(-32768, -32768, 32767, 32767),
                    {pixelRect(32767, 32767, 32767, 1), pixelRect(-32768, 0, 1, 32767)});
    dragTo({0, 0});
    dragTo({widget->width() - 1, 0});
    EXPECT_TRUE(QRectF(widget->rect()).contains(widget->drawnMonitor()));
}

TEST_F(ShownMap, AssistiveTechnologyHearsThePlaceAndMovesIt)
{
    map->setStringValue("Place: to the right");
    auto* accessible = QAccessible::queryAccessibleInterface(widget);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::Graphic);
    EXPECT_EQ(accessible->text(QAccessible::Name), u"Place: to the right"_qs);
    EXPECT_TRUE(accessible->state().focusable);
    auto* actions = accessible->actionInterface();
    ASSERT_TRUE(actions->actionNames().contains(u"Move to the left"_qs));
    actions->doAction(u"Move to the left"_qs);
    EXPECT_EQ(map->chosenSide(), ScreenSide::left);
    EXPECT_EQ(asked(), 1);
    map->setEnabled(false);
    EXPECT_TRUE(actions->actionNames().isEmpty());
    actions->doAction(u"Move to the left"_qs);
    EXPECT_EQ(asked(), 1);
}

} // namespace
} // namespace farview::test
