// Qt's events, each as a window system makes it, on a picture of 320x200 that is drawn twice as
// large, with 50 points of black above and below.
#include "Applications/Device/PictureInput.h"

#include "Applications/Device/ScreenView.h"
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

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Phase = LinkTouchPhase;

/// Where a point of the view is in the picture.
LinkPlace at(int x, int y)
{
    return {static_cast<std::uint32_t>(x * 128), static_cast<std::uint32_t>((y - 50) * 128), 320,
            200};
}

/// What a window does: hands the view's touches on.
class TouchFilter final : public QObject
{
public:
    explicit TouchFilter(std::function<bool(QEvent&)> take) : mTake(std::move(take)) {}

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        const bool isTaken = dynamic_cast<QTouchEvent*>(event) && mTake(*event);
        if (isTaken)
            event->accept();
        return isTaken;
    }

private:
    std::function<bool(QEvent&)> mTake;
};

class PictureInputTest : public testing::Test
{
protected:
    PictureInputTest()
    {
        view.beginPicture(picture);
        view.resize(640, 500);
        view.installEventFilter(&filter);
        view.show();
        input.setReporter(&reporter);
        reporter.setOptions({.touch = true, .typing = true});
    }
    ~PictureInputTest() override { view.endPicture(); }
    void SetUp() override
    {
        ASSERT_TRUE(waitUntil([&] { return view.drawnPlace().area == QRect(0, 50, 640, 400); }));
    }

    bool take(QEvent&& event)
    {
        const bool isTaken = input.take(event);
        loop.advance(InputReporter::pause);
        return isTaken;
    }
    bool mouse(QEvent::Type type, const QPointF& place, Qt::MouseButton button,
               Qt::MouseButtons buttons, Qt::MouseEventSource source = Qt::MouseEventNotSynthesized)
    {
        return take(QMouseEvent(type, place, place, place, button, buttons, {}, source));
    }
    bool key(QEvent::Type type, quint32 scanCode, int key = 0, const QString& text = {},
             bool isRepeated = false)
    {
        return take(QKeyEvent(type, key, {}, scanCode, 0, 0, text, isRepeated));
    }
    void pen(QEvent::Type type, const QPointF& place, double pressure, Qt::MouseButtons buttons,
             const QPointingDevice& device)
    {
        take(QTabletEvent(type, &device, place, place, pressure, 12, -34.4F, 0, 0, 0, {},
                          Qt::NoButton, buttons));
    }
    auto fingers() { return QTest::touchEvent(&view, touchScreen); }
    std::vector<LinkFrame> takeSent() { return std::exchange(sent, {}); }

    ZlibCodec zlib;
    PictureReceiver picture{320, 200, zlib, {}};
    FakeRunLoop loop;
    std::vector<LinkFrame> sent;
    InputReporter reporter{loop, [this](const LinkFrame& frame) { sent.push_back(frame); }};
    Compositor compositor;
    ScreenView view{compositor};
    PictureInput input{view};
    TouchFilter filter{[this](QEvent& event) { return take(std::move(event)); }};
    QPointingDevice* touchScreen = QTest::createTouchDevice();
    const QPointingDevice stylus{"Pen",
                                 2,
                                 QInputDevice::DeviceType::Stylus,
                                 QPointingDevice::PointerType::Pen,
                                 QInputDevice::Capability::Pressure,
                                 1,
                                 3};
    const QPointingDevice eraser{"Eraser",
                                 3,
                                 QInputDevice::DeviceType::Stylus,
                                 QPointingDevice::PointerType::Eraser,
                                 QInputDevice::Capability::Pressure,
                                 1,
                                 3};
};

TEST_F(PictureInputTest, TheButtonsOfAMouseAreThoseOfTheLink)
{
    struct Case {
        Qt::MouseButton button;
        std::uint8_t bit;
    };
    for (const auto& [button, bit] :
         {Case{Qt::LeftButton, 1}, Case{Qt::RightButton, 2}, Case{Qt::MiddleButton, 4},
          Case{Qt::BackButton, 8}, Case{Qt::ForwardButton, 16}}) {
        EXPECT_TRUE(mouse(QEvent::MouseButtonPress, {10, 60}, button, button));
        EXPECT_TRUE(mouse(QEvent::MouseButtonRelease, {12, 60}, button, {}));
        EXPECT_THAT(takeSent(), ElementsAre(LinkFrame(LinkPointer{at(10, 60), bit}),
                                            LinkPointer{at(12, 60), 0}));
    }
    mouse(QEvent::MouseButtonPress, {10, 60}, Qt::TaskButton, Qt::TaskButton);
    EXPECT_THAT(takeSent(), ElementsAre(LinkFrame(LinkPointer{at(10, 60), 0})))
        << "the link has no such button";
}

TEST_F(PictureInputTest, ADoubleClickIsTwoClicks)
{
    mouse(QEvent::MouseButtonPress, {10, 60}, Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, {10, 60}, Qt::LeftButton, {});
    mouse(QEvent::MouseButtonDblClick, {10, 60}, Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, {10, 60}, Qt::LeftButton, {});
    const LinkPointer up{at(10, 60), 0};
    const LinkPointer down{at(10, 60), 1};
    EXPECT_THAT(sent, ElementsAre(LinkFrame(down), up, down, up));
}

TEST_F(PictureInputTest, NothingBesideThePictureMeansAPlaceUnlessItIsHeld)
{
    mouse(QEvent::MouseMove, {10, 40}, Qt::NoButton, {});
    mouse(QEvent::MouseButtonPress, {10, 40}, Qt::LeftButton, Qt::LeftButton);
    EXPECT_THAT(sent, IsEmpty());
    mouse(QEvent::MouseMove, {10, 60}, Qt::NoButton, Qt::LeftButton);
    EXPECT_THAT(takeSent(), ElementsAre(LinkFrame(LinkPointer{at(10, 60), 0})))
        << "it was not pressed here";
    mouse(QEvent::MouseButtonRelease, {10, 60}, Qt::LeftButton, {});
    mouse(QEvent::MouseButtonPress, {10, 60}, Qt::LeftButton, Qt::LeftButton);
    takeSent();
    mouse(QEvent::MouseMove, {10, -200}, Qt::NoButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, {900, 9000}, Qt::LeftButton, {});
    EXPECT_THAT(sent, ElementsAre(LinkFrame(LinkPointer{{1280, 0, 320, 200}, 1}),
                                  LinkPointer{{320 * 256 - 1, 200 * 256 - 1, 320, 200}, 0}));
}

TEST_F(PictureInputTest, WhatQtMakesOfAFingerIsNotToldTwice)
{
    EXPECT_TRUE(mouse(QEvent::MouseButtonPress, {10, 60}, Qt::LeftButton, Qt::LeftButton,
                      Qt::MouseEventSynthesizedByQt));
    EXPECT_TRUE(mouse(QEvent::MouseMove, {10, 60}, Qt::NoButton, Qt::LeftButton,
                      Qt::MouseEventSynthesizedBySystem));
    EXPECT_THAT(sent, IsEmpty());
}

TEST_F(PictureInputTest, AButtonThatWasLiftedIsNotPressedByAMotion)
{
    mouse(QEvent::MouseButtonPress, {10, 60}, Qt::LeftButton, Qt::LeftButton);
    input.leave();
    takeSent();
    mouse(QEvent::MouseMove, {20, 60}, Qt::NoButton, Qt::LeftButton);
    EXPECT_THAT(takeSent(), ElementsAre(LinkFrame(LinkPointer{at(20, 60), 0})));
}

TEST_F(PictureInputTest, TheWheelTurnsInTheLinksDirections)
{
    struct Case {
        QPoint pixels;
        QPoint angle;
        std::int16_t right;
        std::int16_t down;
    };
    for (const Case& each :
         {Case{{}, {0, 120}, 0, -120}, Case{{}, {0, -7}, 0, 7}, Case{{}, {-30, 0}, 30, 0},
          Case{{3, -2}, {36, -24}, -36, 24}, Case{{0, 2}, {}, 0, -16}}) {
        EXPECT_TRUE(take(QWheelEvent({10, 60}, {10, 60}, each.pixels, each.angle, {}, {},
                                     Qt::NoScrollPhase, false)));
        EXPECT_THAT(takeSent(),
                    ElementsAre(LinkFrame(LinkWheel{at(10, 60), each.right, each.down})));
    }
    take(QWheelEvent({10, 40}, {10, 40}, {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false));
    take(QWheelEvent({10, 60}, {10, 60}, {}, {}, {}, {}, Qt::ScrollEnd, false));
    EXPECT_THAT(sent, IsEmpty()) << "beside the picture; at rest";
}

TEST_F(PictureInputTest, FingersAreToldApartBySmallNumbers)
{
    fingers().press(7001, {20, 70}, &view);
    fingers().stationary(7001).press(7002, {30, 80}, &view);
    fingers().release(7001, {20, 70}, &view).move(7002, {40, 80}, &view);
    fingers().stationary(7002).press(7003, {50, 90}, &view);
    EXPECT_THAT(sent, ElementsAre(LinkFrame(LinkTouch{0, Phase::down, at(20, 70)}),
                                  LinkTouch{1, Phase::down, at(30, 80)},
                                  LinkTouch{0, Phase::up, at(20, 70)},
                                  LinkTouch{1, Phase::motion, at(40, 80)},
                                  LinkTouch{0, Phase::down, at(50, 90)}));
    fingers().release(7002, {40, 80}, &view).release(7003, {50, 90}, &view);
    EXPECT_THAT(sent, SizeIs(7));
}

TEST_F(PictureInputTest, AFingerBesideThePictureIsNoneAndOneThatLeavesItStaysAtItsEdge)
{
    fingers().press(1, {20, 40}, &view);
    fingers().move(1, {20, 80}, &view);
    fingers().release(1, {20, 80}, &view);
    EXPECT_THAT(sent, IsEmpty());
    fingers().press(2, {20, 70}, &view);
    fingers().release(2, {20, 10}, &view);
    EXPECT_THAT(sent, ElementsAre(LinkFrame(LinkTouch{0, Phase::down, at(20, 70)}),
                                  LinkTouch{0, Phase::up, at(20, 50)}));
}

TEST_F(PictureInputTest, FingersOfWhichQtLosesSightAreCancelled)
{
    fingers().press(1, {20, 70}, &view);
    take(QTouchEvent(QEvent::TouchCancel, touchScreen));
    fingers().release(1, {20, 70}, &view);
    EXPECT_THAT(takeSent(), ElementsAre(LinkFrame(LinkTouch{0, Phase::down, at(20, 70)}),
                                        LinkTouch{0, Phase::cancel, at(20, 70)}));
    fingers().press(2, {30, 70}, &view);
    // Its end is not heard: somebody else had the touches meanwhile.
    view.removeEventFilter(&filter);
    fingers().release(2, {30, 70}, &view);
    view.installEventFilter(&filter);
    fingers().press(3, {40, 70}, &view);
    EXPECT_THAT(sent, ElementsAre(LinkFrame(LinkTouch{0, Phase::down, at(30, 70)}),
                                  LinkTouch{0, Phase::cancel, at(30, 70)},
                                  LinkTouch{0, Phase::down, at(40, 70)}));
    fingers().release(3, {40, 70}, &view);
}

TEST_F(PictureInputTest, MoreFingersThanTheLinkKnowsAreLeftOut)
{
    for (const bool isDown : {true, false}) {
        auto all = fingers();
        for (int id = 0; id < 20; ++id)
            isDown ? all.press(id, {20 + id, 70}, &view) : all.release(id, {20 + id, 70}, &view);
        all.commit();
        EXPECT_THAT(takeSent(), SizeIs(mostLinkFingers));
    }
}

TEST_F(PictureInputTest, ThePenHasPressureTiltAndButtons)
{
    pen(QEvent::TabletMove, {20, 70}, 0, {}, stylus);
    pen(QEvent::TabletPress, {20, 70}, 0.5, Qt::LeftButton, stylus);
    pen(QEvent::TabletMove, {22, 70}, 1, Qt::LeftButton | Qt::MiddleButton, stylus);
    pen(QEvent::TabletRelease, {22, 70}, 0, Qt::RightButton, stylus);
    LinkPen wanted{.place = at(20, 70), .tiltX = 12, .tiltY = -34};
    ASSERT_THAT(sent, SizeIs(4));
    EXPECT_EQ(sent[0], LinkFrame(wanted));
    wanted.isDown = true;
    wanted.pressure = 32768;
    EXPECT_EQ(sent[1], LinkFrame(wanted));
    wanted.place = at(22, 70);
    wanted.pressure = kFullLinkPressure;
    wanted.buttons = 1;
    EXPECT_EQ(sent[2], LinkFrame(wanted));
    wanted.isDown = false;
    wanted.pressure = 0;
    wanted.buttons = 2;
    EXPECT_EQ(sent[3], LinkFrame(wanted));
}

TEST_F(PictureInputTest, TheOtherEndOfThePenErases)
{
    pen(QEvent::TabletPress, {20, 70}, 0.5, Qt::LeftButton, eraser);
    ASSERT_THAT(sent, SizeIs(1));
    EXPECT_TRUE(std::get<LinkPen>(sent.front()).isEraser);
}

TEST_F(PictureInputTest, APenThatGoesIsTold)
{
    pen(QEvent::TabletMove, {20, 70}, 0, {}, stylus);
    takeSent();
    input.penLeft();
    const LinkFrame gone(LinkPen{.place = at(20, 70), .isNear = false});
    EXPECT_THAT(takeSent(), ElementsAre(gone));
    pen(QEvent::TabletMove, {20, 70}, 0, {}, stylus);
    takeSent();
    pen(QEvent::TabletMove, {20, 20}, 0, {}, stylus);
    EXPECT_THAT(takeSent(), ElementsAre(gone)) << "beside the picture";
}

TEST_F(PictureInputTest, APenThatWasLiftedWritesOnlyWhenItIsPressedAgain)
{
    pen(QEvent::TabletPress, {20, 70}, 0.5, Qt::LeftButton, stylus);
    input.leave();
    takeSent();
    pen(QEvent::TabletMove, {22, 70}, 0.5, Qt::LeftButton, stylus);
    ASSERT_THAT(sent, SizeIs(1));
    EXPECT_FALSE(std::get<LinkPen>(sent.front()).isDown);
}

TEST_F(PictureInputTest, KeysHaveTheKernelsCodes)
{
    EXPECT_TRUE(key(QEvent::KeyPress, 38, Qt::Key_A, u"a"_qs));
    EXPECT_TRUE(key(QEvent::KeyPress, 38, Qt::Key_A, u"a"_qs, true));
    EXPECT_TRUE(key(QEvent::KeyRelease, 38, Qt::Key_A, u"a"_qs, true));
    EXPECT_TRUE(key(QEvent::KeyRelease, 38, Qt::Key_A, u"a"_qs));
    EXPECT_THAT(takeSent(), ElementsAre(LinkFrame(LinkKey{30, true}), LinkKey{30, false}))
        << "the computer repeats by itself";
    key(QEvent::KeyPress, 8 + 256, Qt::Key_Launch0);
    EXPECT_THAT(sent, IsEmpty()) << "the link has no such key";
}

TEST_F(PictureInputTest, KeysWithoutACodeAreKeysOrText)
{
    key(QEvent::KeyPress, 0, Qt::Key_Backspace, u"\b"_qs);
    key(QEvent::KeyRelease, 0, Qt::Key_Backspace, u"\b"_qs);
    key(QEvent::KeyPress, 0, Qt::Key_Eacute, u"é"_qs);
    key(QEvent::KeyRelease, 0, Qt::Key_Eacute, u"é"_qs);
    key(QEvent::KeyPress, 0, Qt::Key_Shift);
    key(QEvent::KeyPress, 0, Qt::Key_C, u"\x3"_qs);
    EXPECT_THAT(sent, ElementsAre(LinkFrame(LinkKey{14, true}), LinkKey{14, false}, LinkText{"é"}));
}

TEST_F(PictureInputTest, TextOfAnInputMethodIsTyped)
{
    QInputMethodEvent composing(u"にほ"_qs, {});
    EXPECT_TRUE(input.take(composing));
    EXPECT_THAT(sent, IsEmpty()) << "it is not finished";
    QInputMethodEvent finished;
    finished.setCommitString(u"日本\nx"_qs);
    EXPECT_TRUE(input.take(finished));
    EXPECT_THAT(sent, ElementsAre(LinkFrame(LinkText{"日本"}), LinkKey{28, true},
                                  LinkKey{28, false}, LinkText{"x"}));
}

TEST_F(PictureInputTest, LeavesKeysToTheWindowWhileTheDeviceMayNotType)
{
    reporter.setOptions({.touch = true});
    EXPECT_FALSE(key(QEvent::KeyPress, 38, Qt::Key_A, u"a"_qs));
    QInputMethodEvent text;
    EXPECT_FALSE(input.take(text));
}

TEST_F(PictureInputTest, ShortcutsOfTheWindowAreTheComputersWhileTheDeviceTypes)
{
    EXPECT_TRUE(key(QEvent::ShortcutOverride, 38, Qt::Key_A, u"a"_qs));
    EXPECT_THAT(sent, IsEmpty()) << "the press follows";
}

TEST_F(PictureInputTest, IsOffWithoutAReporterAndWhileTheHostWantsNothing)
{
    EXPECT_TRUE(input.isOn());
    reporter.setOptions({.typing = true});
    EXPECT_FALSE(input.isOn());
    input.setReporter(nullptr);
    EXPECT_FALSE(input.isOn());
    input.leave();
    input.penLeft();
    EXPECT_FALSE(input.isPenDown());
}

} // namespace
} // namespace farview
