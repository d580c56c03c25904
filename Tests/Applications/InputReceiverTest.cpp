#include "Applications/ScreenCapture/InputReceiver.h"

#include "Platform/Fake/FakeInputSink.h"
#include "Platform/Fake/FakeRunLoop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Event = FakeInputSink::Event;
using Button = FakeInputSink::Button;
using Key = FakeInputSink::Key;

namespace
{

constexpr auto down = LinkTouchPhase::down;
constexpr auto motion = LinkTouchPhase::motion;
constexpr auto up = LinkTouchPhase::up;

LinkPlace place(std::uint32_t x, std::uint32_t y) { return {x * 256, y * 256, 800, 600}; }
InputPlace onMonitor(double x, double y) { return {x, y, 1920 + x, y}; }
Event touched(int finger, TouchPhase phase, double x, double y)
{
    return TouchPoint{finger, phase, onMonitor(x, y), 1, 0, 0};
}

/// A monitor of 800x600 at 1920, 0, and a device that may do everything.
class InputReceiverTest : public testing::Test
{
protected:
    InputReceiverTest()
    {
        receiver->setMonitor({{1920, 0, 800, 600}, 800, 600});
        receiver->setRights({true, true});
    }

    void touch(std::uint8_t finger, LinkTouchPhase phase, std::uint32_t x, std::uint32_t y)
    {
        receiver->take(LinkTouch{finger, phase, place(x, y)});
    }
    void point(std::uint32_t x, std::uint32_t y, std::uint8_t buttons)
    {
        receiver->take(LinkPointer{place(x, y), buttons});
    }
    std::vector<Event> events() { return sink.takeEvents(); }

    FakeRunLoop loop;
    FakeInputSink sink;
    std::unique_ptr<InputReceiver> receiver =
        std::make_unique<InputReceiver>(sink, [this] { return loop.now(); });
};

TEST_F(InputReceiverTest, PassesTwoFingersOn)
{
    touch(0, down, 10, 10);
    touch(1, down, 50, 50);
    touch(1, motion, 60, 60);
    touch(0, up, 10, 10);
    touch(1, LinkTouchPhase::cancel, 60, 60);
    EXPECT_THAT(events(), ElementsAre(touched(0, TouchPhase::down, 10, 10),
                                      touched(1, TouchPhase::down, 50, 50),
                                      touched(1, TouchPhase::motion, 60, 60),
                                      touched(0, TouchPhase::up, 10, 10),
                                      touched(1, TouchPhase::cancel, 60, 60)));
}

TEST_F(InputReceiverTest, PassesPressureAndContactOn)
{
    receiver->take(LinkTouch{2, down, place(1, 2), kFullLinkPressure / 5, 30, 40});
    EXPECT_THAT(events(),
                ElementsAre(Event(TouchPoint{2, TouchPhase::down, onMonitor(1, 2), 0.2, 30, 40})));
}

TEST_F(InputReceiverTest, KnowsNoFingerThatDidNotComeDown)
{
    touch(0, motion, 10, 10);
    touch(0, up, 10, 10);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(InputReceiverTest, LiftsAFingerThatComesDownTwice)
{
    touch(0, down, 10, 10);
    touch(0, down, 20, 20);
    EXPECT_THAT(events(), ElementsAre(touched(0, TouchPhase::down, 10, 10),
                                      touched(0, TouchPhase::up, 10, 10),
                                      touched(0, TouchPhase::down, 20, 20)));
}

TEST_F(InputReceiverTest, IgnoresPlacesOnAPictureOfAnotherSize)
{
    receiver->take(LinkTouch{0, down, {256, 256, 600, 800}});
    receiver->take(LinkPointer{{256, 256, 600, 800}, 1});
    receiver->take(LinkWheel{{256, 256, 600, 800}, 0, 120});
    receiver->take(LinkPen{{256, 256, 600, 800}, true, true});
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(InputReceiverTest, LiftsAFingerWhereItWasWhenTheMonitorHasTurnedUnderIt)
{
    touch(0, down, 700, 10);
    receiver->setMonitor({{1920, 0, 600, 800}, 600, 800});
    touch(0, motion, 710, 10);
    touch(0, up, 710, 10);
    EXPECT_THAT(events(), ElementsAre(touched(0, TouchPhase::down, 700, 10),
                                      touched(0, TouchPhase::up, 700, 10)));
}

TEST_F(InputReceiverTest, MovesThePointerAndItsButtons)
{
    point(10, 10, 0);
    point(10, 10, 0b11);
    point(20, 10, 0b10);
    point(20, 10, 0b11100);
    EXPECT_THAT(events(),
                ElementsAre(onMonitor(10, 10), onMonitor(10, 10), Button{PointerButton::left, true},
                            Button{PointerButton::right, true}, onMonitor(20, 10),
                            Button{PointerButton::left, false}, onMonitor(20, 10),
                            Button{PointerButton::right, false},
                            Button{PointerButton::middle, true}, Button{PointerButton::back, true},
                            Button{PointerButton::forward, true}));
}

TEST_F(InputReceiverTest, LetsAButtonGoWhereverThePointerIs)
{
    point(10, 10, 1);
    events();
    receiver->take(LinkPointer{{0, 0, 600, 800}, 0});
    EXPECT_THAT(events(), ElementsAre(Button{PointerButton::left, false}));
}

TEST_F(InputReceiverTest, TurnsTheWheelWhereThePointerIs)
{
    receiver->take(LinkWheel{place(5, 6), -60, 240});
    EXPECT_THAT(events(), ElementsAre(onMonitor(5, 6), FakeInputSink::Wheel{-0.5, 2}));
}

TEST_F(InputReceiverTest, DrawsWithThePen)
{
    receiver->take(LinkPen{place(5, 6), true, true, true, kFullLinkPressure, -30, 45, 2});
    receiver->take(LinkPen{place(7, 8), false});
    EXPECT_THAT(events(), ElementsAre(PenState{onMonitor(5, 6), true, true, true, 1, -30, 45, 2},
                                      PenState{.place = onMonitor(5, 6), .isNear = false}));
}

TEST_F(InputReceiverTest, MakesThePointerOfTheFirstFingerWhereThereAreNoFingers)
{
    sink.setAbilities({.pointer = true});
    touch(3, down, 10, 10);
    touch(1, down, 99, 99);
    touch(1, motion, 98, 98);
    touch(3, motion, 11, 11);
    touch(3, up, 12, 12);
    touch(1, motion, 97, 97);
    EXPECT_THAT(events(),
                ElementsAre(onMonitor(10, 10), Button{PointerButton::left, true}, onMonitor(11, 11),
                            onMonitor(12, 12), Button{PointerButton::left, false}));
}

TEST_F(InputReceiverTest, MakesThePointerOfThePenWhereThereAreNoPens)
{
    sink.setAbilities({.pointer = true});
    receiver->take(LinkPen{place(5, 6)});
    receiver->take(LinkPen{place(5, 6), true, true, false, 100, 0, 0, 1});
    receiver->take(LinkPen{place(5, 6), false});
    EXPECT_THAT(events(),
                ElementsAre(onMonitor(5, 6), onMonitor(5, 6), Button{PointerButton::right, true},
                            onMonitor(5, 6), Button{PointerButton::right, false}));
}

TEST_F(InputReceiverTest, TypesOnlyWhereThatIsAllowed)
{
    EXPECT_TRUE(receiver->take(LinkKey{30, true}));
    EXPECT_FALSE(receiver->take(LinkKey{30, false}));
    EXPECT_TRUE(receiver->take(LinkText{"ü"}));
    EXPECT_THAT(events(), ElementsAre(Key{30, true}, Key{30, false}, std::string("ü")));
    receiver->setRights({true, false});
    EXPECT_FALSE(receiver->take(LinkKey{30, true}));
    EXPECT_FALSE(receiver->take(LinkText{"a"}));
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(InputReceiverTest, PressesAKeyOnceHoweverOftenItIsSaid)
{
    receiver->take(LinkKey{30, false});
    receiver->take(LinkKey{30, true});
    receiver->take(LinkKey{30, true});
    EXPECT_THAT(events(), ElementsAre(Key{30, true}));
}

TEST_F(InputReceiverTest, LetsKeysGoWhenTheRightToTypeIsTakenAway)
{
    receiver->take(LinkKey{42, true});
    receiver->take(LinkKey{30, true});
    touch(0, down, 1, 1);
    events();
    receiver->setRights({true, false});
    EXPECT_THAT(events(), ElementsAre(Key{30, false}, Key{42, false})) << "the finger stays";
}

TEST_F(InputReceiverTest, PassesNothingAndLiftsAllOnceTheOptionIsOff)
{
    receiver->take(LinkKey{42, true});
    touch(0, down, 1, 1);
    point(2, 2, 1);
    receiver->take(LinkPen{place(5, 6), true, true});
    events();
    receiver->setRights({false, true});
    touch(1, down, 3, 3);
    receiver->take(LinkKey{30, true});
    EXPECT_THAT(events(), ElementsAre(touched(0, TouchPhase::cancel, 1, 1),
                                      PenState{.place = onMonitor(5, 6), .isNear = false},
                                      Button{PointerButton::left, false}, Key{42, false}));
}

TEST_F(InputReceiverTest, LiftsAllWhenItGoes)
{
    receiver->take(LinkKey{42, true});
    touch(4, down, 1, 1);
    events();
    receiver.reset();
    EXPECT_THAT(events(), ElementsAre(touched(4, TouchPhase::cancel, 1, 1), Key{42, false}));
}

TEST_F(InputReceiverTest, LetsThePointersButtonGoWithItsFinger)
{
    sink.setAbilities({.pointer = true});
    touch(0, down, 1, 1);
    events();
    receiver->releaseAll();
    EXPECT_THAT(events(), Contains(Event(Button{PointerButton::left, false})));
    touch(0, down, 2, 2);
    EXPECT_THAT(events(), ElementsAre(onMonitor(2, 2), Button{PointerButton::left, true}));
}

TEST_F(InputReceiverTest, SurvivesTenThousandEventsASecondAndKeepsThePlaceOfTheLast)
{
    touch(0, down, 1, 1);
    for (int i = 0; i < 10000; ++i) {
        loop.advance(Duration(0.0001));
        touch(0, motion, static_cast<std::uint32_t>(i % 800), 5);
    }
    touch(0, up, 400, 5);
    const auto all = events();
    EXPECT_LE(all.size(), 1.3 * InputReceiver::motionsPerSecond);
    EXPECT_GE(all.size(), 0.9 * InputReceiver::motionsPerSecond);
    EXPECT_EQ(all.back(), touched(0, TouchPhase::up, 400, 5));
}

TEST_F(InputReceiverTest, LetsNobodyPressAThousandKeysAtOnceAndHoldsNone)
{
    for (int i = 0; i < 1000; ++i) {
        receiver->take(LinkKey{30, true});
        receiver->take(LinkKey{30, false});
    }
    const auto all = events();
    EXPECT_THAT(all, SizeIs(2 * InputReceiver::strokesAtOnce));
    EXPECT_EQ(all.back(), Event(Key{30, false}));
    loop.advance(Duration(0.1));
    receiver->take(LinkKey{30, true});
    EXPECT_THAT(events(), ElementsAre(Key{30, true})) << "after a while it may again";
}

TEST_F(InputReceiverTest, CountsEachCharacterOfATextAsAKey)
{
    const std::string longest(200, 'x');
    EXPECT_TRUE(receiver->take(LinkText{longest}));
    EXPECT_TRUE(receiver->take(LinkText{longest}));
    EXPECT_FALSE(receiver->take(LinkText{longest}));
    EXPECT_FALSE(receiver->take(LinkText{""}));
    EXPECT_THAT(events(), SizeIs(2));
}

} // namespace
