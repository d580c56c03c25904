// What of the user's doings is the computer's, and what is the window's.
#include "Applications/Device/DeviceWindow.h"

#include "Platform/Fake/FakeRunLoop.h"
#include "Screen/Codecs/ZlibCodec.h"
#include "Tests/Support/WaitUntil.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace farview
{
namespace
{

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class DeviceWindowInputTest : public testing::Test
{
protected:
    DeviceWindowInputTest()
    {
        window.show();
        window.setInput(&reporter);
        window.beginPicture(picture);
        allow({.touch = true, .typing = true});
    }
    ~DeviceWindowInputTest() override { window.endPicture(); }
    void SetUp() override
    {
        ASSERT_TRUE(waitUntil([&] { return view().drawnPlace().area.width() == 1000; }));
    }

    void allow(const LinkOptions& options)
    {
        reporter.setOptions(options);
        status.options = options;
        window.showStatus(status);
    }
    ScreenView& view()
    {
        return static_cast<ScreenView&>(*window.findChild<QWidget*>(QStringLiteral("screenView")));
    }
    QWidget& bar() { return *window.findChild<QWidget*>(QStringLiteral("pictureBar")); }
    QPushButton& button(const char* name)
    {
        return *window.findChild<QPushButton*>(QString::fromLatin1(name));
    }
    QLabel& hint() { return *window.findChild<QLabel*>(QStringLiteral("barHint")); }
    template <typename Frame> int count() const
    {
        return static_cast<int>(std::count_if(sent.begin(), sent.end(), [](const auto& each) {
            return std::holds_alternative<Frame>(each);
        }));
    }
    bool sendKey(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        const auto before = sent.size();
        QKeyEvent press(QEvent::KeyPress, key, modifiers, 38, 0, 0);
        QApplication::sendEvent(&view(), &press);
        const bool isSent = sent.size() > before && sent.back() == LinkFrame(LinkKey{30, true});
        QKeyEvent release(QEvent::KeyRelease, key, modifiers, 38, 0, 0);
        QApplication::sendEvent(&view(), &release);
        return isSent;
    }
    void movePointer(const QPointF& place)
    {
        QMouseEvent move(QEvent::MouseMove, place, place, Qt::NoButton, {}, {});
        QApplication::sendEvent(&view(), &move);
    }
    void touch(const std::vector<QPoint>& places)
    {
        QTest::touchEvent(&view(), screen).press(0, places.front(), &view());
        for (std::size_t index = 1; index < places.size(); ++index)
            QTest::touchEvent(&view(), screen).move(0, places[index], &view());
        QTest::touchEvent(&view(), screen).release(0, places.back(), &view());
    }

    void holdEverything()
    {
        reporter.key({30, true});
        QTest::mousePress(&view(), Qt::LeftButton, {}, {100, 300});
        QTest::touchEvent(&view(), screen).press(0, {200, 300}, &view());
        ASSERT_TRUE(reporter.isDown(0));
        ASSERT_EQ(reporter.pointer().buttons, 1);
        sent.clear();
    }
    void expectNothingIsHeld()
    {
        EXPECT_THAT(sent, SizeIs(3));
        EXPECT_FALSE(reporter.isDown(0));
        EXPECT_EQ(reporter.pointer().buttons, 0);
        QTest::mouseRelease(&view(), Qt::LeftButton, {}, {100, 300});
        QTest::touchEvent(&view(), screen).release(0, {200, 300}, &view());
    }

    QPointingDevice* screen = QTest::createTouchDevice();
    DeviceStatus status{.announcedName = "Desk", .port = 6001};
    DeviceTexts texts{{"en"}};
    ZlibCodec zlib;
    PictureReceiver picture{1000, 800, zlib, {}};
    FakeRunLoop loop;
    std::vector<LinkFrame> sent;
    InputReporter reporter{loop, [this](const LinkFrame& frame) { sent.push_back(frame); }};
    int disconnects = 0;
    DeviceWindow window{texts,
                        {[] {}, [this] { ++disconnects; }, [](bool) {}, [](const auto&) {}, [] {},
                         [](const auto&) {}}};
};

TEST_F(DeviceWindowInputTest, ClicksAreTheComputers)
{
    QTest::mouseClick(&view(), Qt::LeftButton, {}, {100, 3});
    EXPECT_FALSE(bar().isVisible()) << "the upper edge, too";
    QTest::mouseDClick(&view(), Qt::LeftButton, {}, {100, 300});
    EXPECT_TRUE(window.isFullScreen());
    EXPECT_EQ(count<LinkPointer>(), 3);
}

TEST_F(DeviceWindowInputTest, EverythingIsTheWindowsAgainWhenTheComputerTakesNothing)
{
    allow({});
    QTest::mouseClick(&view(), Qt::LeftButton, {}, {100, 3});
    EXPECT_TRUE(bar().isVisible());
    QTest::mouseDClick(&view(), Qt::LeftButton, {}, {100, 300});
    EXPECT_FALSE(window.isFullScreen());
    EXPECT_THAT(sent, IsEmpty());
}

TEST_F(DeviceWindowInputTest, TouchesAreTheComputersAndNoClicksAreMadeOfThem)
{
    touch({{100, 300}, {120, 320}});
    EXPECT_EQ(count<LinkPointer>(), 0);
    EXPECT_EQ(std::get<LinkTouch>(sent.front()).phase, LinkTouchPhase::down);
    EXPECT_EQ(std::get<LinkTouch>(sent.back()).phase, LinkTouchPhase::up);
}

TEST_F(DeviceWindowInputTest, ATouchIsAClickInTheWindowWhenTheComputerTakesNothing)
{
    allow({});
    touch({{100, 3}});
    EXPECT_TRUE(bar().isVisible());
    EXPECT_THAT(sent, IsEmpty());
}

TEST_F(DeviceWindowInputTest, ASwipeFromTheUpperEdgeBringsTheBar)
{
    touch({{100, 2}, {100, 20}, {100, 60}});
    EXPECT_TRUE(bar().isVisible());
    EXPECT_THAT(sent, IsEmpty());
    touch({{100, 400}});
    EXPECT_FALSE(bar().isVisible()) << "a touch elsewhere takes it away";
    EXPECT_EQ(count<LinkTouch>(), 2) << "and is the computer's";
}

TEST_F(DeviceWindowInputTest, ATapAtTheUpperEdgeIsTheComputers)
{
    touch({{100, 2}});
    EXPECT_FALSE(bar().isVisible());
    ASSERT_EQ(count<LinkTouch>(), 2);
    const auto& down = std::get<LinkTouch>(sent.front());
    EXPECT_EQ(down.phase, LinkTouchPhase::down);
    EXPECT_EQ(down.place, (LinkPlace{100 * 256, 2 * 256, 1000, 800}));
}

TEST_F(DeviceWindowInputTest, AFingerPressesTheButtonsOfTheBar)
{
    QTest::keyClick(&view(), Qt::Key_F10);
    ASSERT_TRUE(bar().isVisible());
    QWidget& disconnect = button("disconnectButton");
    const QPoint place = disconnect.mapTo(&window, disconnect.rect().center());
    QTest::touchEvent(&window, screen).press(0, place, &window);
    QTest::touchEvent(&window, screen).release(0, place, &window);
    EXPECT_EQ(disconnects, 1);
    EXPECT_THAT(sent, IsEmpty());
}

TEST_F(DeviceWindowInputTest, APointerThatRestsAtTheVeryEdgeBringsTheBar)
{
    movePointer({100, 5});
    runLoopFor(std::chrono::milliseconds(600));
    EXPECT_FALSE(bar().isVisible());
    movePointer({100, 0});
    EXPECT_TRUE(waitUntil([&] { return bar().isVisible(); }));
}

TEST_F(DeviceWindowInputTest, KeysButTwoAreTheComputersWhileItMayType)
{
    for (const int key : {Qt::Key_A, Qt::Key_Escape, Qt::Key_Tab, Qt::Key_F1})
        EXPECT_TRUE(sendKey(key)) << key;
    EXPECT_TRUE(window.isFullScreen());
    EXPECT_TRUE(sendKey(Qt::Key_F10, Qt::ShiftModifier));
    EXPECT_FALSE(sendKey(Qt::Key_F10));
    EXPECT_TRUE(bar().isVisible());
    EXPECT_FALSE(sendKey(Qt::Key_F11));
    EXPECT_FALSE(window.isFullScreen());
}

TEST_F(DeviceWindowInputTest, KeysAreTheWindowsWhileItMayNotType)
{
    allow({.touch = true});
    EXPECT_FALSE(sendKey(Qt::Key_Escape));
    EXPECT_FALSE(window.isFullScreen());
}

TEST_F(DeviceWindowInputTest, EscapeInTheBarClosesItAndTheKeysAreTheComputersAgain)
{
    window.activateWindow();
    QTest::keyClick(&view(), Qt::Key_F10);
    ASSERT_NE(window.focusWidget(), &view());
    QTest::keyClick(window.focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(bar().isVisible());
    EXPECT_EQ(window.focusWidget(), &view());
    EXPECT_EQ(count<LinkKey>(), 0);
}

TEST_F(DeviceWindowInputTest, NothingIsHeldWhenTheBarTakesTheKeys)
{
    holdEverything();
    QTest::keyClick(&view(), Qt::Key_F10);
    expectNothingIsHeld();
}

TEST_F(DeviceWindowInputTest, NothingIsHeldWhenAnotherWindowComes)
{
    QApplication::setActiveWindow(&window);
    holdEverything();
    QWidget other;
    other.show();
    QApplication::setActiveWindow(&other);
    expectNothingIsHeld();
}

TEST_F(DeviceWindowInputTest, NothingIsHeldWhenItIsHidden)
{
    holdEverything();
    window.hide();
    expectNothingIsHeld();
}

TEST_F(DeviceWindowInputTest, APenThatGoesFarIsHeardOfByTheProgram)
{
    const QPointingDevice stylus("Pen", 2, QInputDevice::DeviceType::Stylus,
                                 QPointingDevice::PointerType::Pen,
                                 QInputDevice::Capability::Pressure, 1, 3);
    const auto tell = [&](QObject& object, QEvent::Type type) {
        QTabletEvent event(type, &stylus, {100, 300}, {100, 300}, 0, 0, 0, 0, 0, 0, {},
                           Qt::NoButton, {});
        QApplication::sendEvent(&object, &event);
    };
    tell(view(), QEvent::TabletMove);
    tell(*qApp, QEvent::TabletLeaveProximity);
    ASSERT_EQ(count<LinkPen>(), 2);
    EXPECT_FALSE(std::get<LinkPen>(sent.back()).isNear);
}

TEST_F(DeviceWindowInputTest, ItsOwnPointerIsHiddenWhereTheComputerDrawsOne)
{
    movePointer({100, 300});
    EXPECT_EQ(view().cursor().shape(), Qt::ArrowCursor);
    Cursor cursor{{0, 0}, Picture(4, 4)};
    ASSERT_TRUE(picture.apply(cursorPacket(cursor, zlib)));
    movePointer({101, 300});
    EXPECT_EQ(view().cursor().shape(), Qt::BlankCursor);
    EXPECT_EQ(bar().cursor().shape(), Qt::ArrowCursor) << "it is no picture";
}

TEST_F(DeviceWindowInputTest, TheKeyboardIsOfferedWhileItMayTypeAndTakesTextWhileItIsWanted)
{
    QTest::keyClick(&view(), Qt::Key_F10);
    QPushButton& keyboard = button("keyboardButton");
    EXPECT_TRUE(keyboard.isVisible());
    EXPECT_FALSE(view().testAttribute(Qt::WA_InputMethodEnabled));
    keyboard.click();
    EXPECT_TRUE(view().testAttribute(Qt::WA_InputMethodEnabled));
    EXPECT_EQ(window.focusWidget(), &view());
    QInputMethodEvent text;
    text.setCommitString(QStringLiteral("é"));
    QApplication::sendEvent(&view(), &text);
    EXPECT_EQ(sent.back(), LinkFrame(LinkText{"é"}));
    allow({.touch = true});
    EXPECT_FALSE(keyboard.isVisible());
    EXPECT_FALSE(view().testAttribute(Qt::WA_InputMethodEnabled));
}

TEST_F(DeviceWindowInputTest, TheKeyboardGoesWithThePicture)
{
    button("keyboardButton").click();
    window.endPicture();
    EXPECT_FALSE(view().testAttribute(Qt::WA_InputMethodEnabled));
    window.beginPicture(picture);
    QTest::keyClick(&view(), Qt::Key_F10);
    EXPECT_TRUE(button("keyboardButton").isVisible());
    EXPECT_FALSE(button("keyboardButton").isChecked());
}

TEST_F(DeviceWindowInputTest, TheBarSaysWhatIsInTheWay)
{
    QTest::keyClick(&view(), Qt::Key_F10);
    EXPECT_FALSE(hint().isVisible());
    allow({.touch = true});
    EXPECT_TRUE(hint().isVisible());
    EXPECT_THAT(hint().text().toStdString(), HasSubstr("does not let this device type"));
    EXPECT_GE(hint().height(), hint().heightForWidth(hint().width()));
    allow({.typing = true});
    EXPECT_THAT(hint().text().toStdString(), HasSubstr("does not take this device's input"));
}

} // namespace
} // namespace farview
