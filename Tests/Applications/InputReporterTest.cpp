#include "Applications/Device/InputReporter.h"

#include "Link/Wire/LinkCodec.h"
#include "Platform/Fake/FakeRunLoop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Phase = LinkTouchPhase;

constexpr LinkPlace at(std::uint32_t x) { return {x, 5, 640, 480}; }
constexpr LinkTouch finger(std::uint8_t number, Phase phase, std::uint32_t x = 1)
{
    return {number, phase, at(x)};
}
constexpr LinkPointer pointerAt(std::uint32_t x, std::uint8_t buttons = 0)
{
    return {at(x), buttons};
}
LinkPen penAt(std::uint32_t x, bool isDown) { return {.place = at(x), .isDown = isDown}; }

class InputReporterTest : public testing::Test
{
protected:
    InputReporterTest() { reporter.setOptions({.touch = true, .typing = true}); }
    std::vector<LinkFrame> takeSent() { return std::exchange(sent, {}); }

    FakeRunLoop loop;
    std::vector<LinkFrame> sent;
    InputReporter reporter{loop, [this](const LinkFrame& frame) { sent.push_back(frame); }};
};

TEST_F(InputReporterTest, TellsWhatTheUserDoesAtOnce)
{
    reporter.touch(finger(0, Phase::down));
    reporter.touch(finger(0, Phase::up));
    reporter.pen(penAt(3, true));
    reporter.pointer(pointerAt(4, 1));
    reporter.key({30, true});
    reporter.text("é");
    EXPECT_THAT(sent,
                ElementsAre(LinkFrame(finger(0, Phase::down)), finger(0, Phase::up), penAt(3, true),
                            pointerAt(4, 1), LinkKey{30, true}, LinkText{"é"}));
}

TEST_F(InputReporterTest, SendsNothingBeforeTheHostWantsIt)
{
    InputReporter early(loop, [this](const LinkFrame& frame) { sent.push_back(frame); });
    const auto doAll = [&] {
        early.touch(finger(0, Phase::down));
        early.pen(penAt(1, true));
        early.pointer(pointerAt(1, 1));
        early.wheel({at(1), 0, 120});
        early.key({30, true});
        early.text("a");
        early.liftAll();
        loop.advance(1s);
    };
    doAll();
    early.setOptions({.touch = false, .typing = true});
    doAll();
    EXPECT_THAT(sent, IsEmpty());
}

TEST_F(InputReporterTest, SendsKeysAndTextOnlyWhileTheHostLetsItType)
{
    reporter.setOptions({.touch = true, .typing = false});
    reporter.key({30, true});
    reporter.text("a");
    EXPECT_THAT(sent, IsEmpty());
    reporter.pointer(pointerAt(1, 1));
    EXPECT_THAT(sent, SizeIs(1)) << "all else is sent";
}

TEST_F(InputReporterTest, MotionsOfOneSourceAreJoinedToTheNewest)
{
    reporter.pointer(pointerAt(1));
    reporter.pointer(pointerAt(2));
    reporter.pointer(pointerAt(3));
    EXPECT_THAT(takeSent(), ElementsAre(LinkFrame(pointerAt(1)))) << "the first at once";
    loop.advance(InputReporter::pause);
    EXPECT_THAT(takeSent(), ElementsAre(LinkFrame(pointerAt(3))));
    loop.advance(1s);
    EXPECT_THAT(sent, IsEmpty());
    EXPECT_EQ(loop.pendingCount(), 0u) << "it does not wake for nothing";
}

TEST_F(InputReporterTest, TurnsOfTheWheelAddUp)
{
    reporter.pointer(pointerAt(1));
    takeSent();
    reporter.wheel({at(1), 10, -20});
    reporter.wheel({at(2), 5, -32000});
    reporter.wheel({at(3), 0, -32000});
    loop.advance(InputReporter::pause);
    EXPECT_THAT(sent, ElementsAre(LinkFrame(LinkWheel{at(3), 15, -32768})));
}

TEST_F(InputReporterTest, EachFingerHasItsOwnNewestPlace)
{
    reporter.touch(finger(0, Phase::down));
    reporter.touch(finger(1, Phase::down));
    reporter.touch(finger(0, Phase::motion, 2));
    takeSent();
    for (std::uint32_t x = 3; x < 20; ++x) {
        reporter.touch(finger(0, Phase::motion, x));
        reporter.touch(finger(1, Phase::motion, 100 + x));
    }
    loop.advance(InputReporter::pause);
    EXPECT_THAT(
        sent, ElementsAre(LinkFrame(finger(0, Phase::motion, 19)), finger(1, Phase::motion, 119)));
}

TEST_F(InputReporterTest, NoMotionIsToldAfterWhatCameLater)
{
    reporter.touch(finger(0, Phase::down));
    reporter.touch(finger(0, Phase::motion, 2));
    reporter.touch(finger(0, Phase::motion, 3));
    takeSent();
    reporter.touch(finger(0, Phase::up, 4));
    EXPECT_THAT(takeSent(),
                ElementsAre(LinkFrame(finger(0, Phase::motion, 3)), finger(0, Phase::up, 4)));
    reporter.pointer(pointerAt(7));
    reporter.pointer(pointerAt(8, 1));
    reporter.pointer(pointerAt(9, 1));
    EXPECT_THAT(takeSent(), ElementsAre(LinkFrame(pointerAt(7)), pointerAt(8, 1)));
    loop.advance(InputReporter::pause);
    EXPECT_THAT(sent, ElementsAre(LinkFrame(pointerAt(9, 1))));
}

TEST_F(InputReporterTest, APressOfThePenOrItsOtherEndIsNoMotion)
{
    reporter.pen(penAt(1, false));
    reporter.pen(penAt(2, true));
    LinkPen turned = penAt(3, true);
    turned.isEraser = true;
    reporter.pen(turned);
    LinkPen pressed = turned;
    pressed.buttons = 1;
    reporter.pen(pressed);
    EXPECT_THAT(sent, ElementsAre(LinkFrame(penAt(1, false)), penAt(2, true), turned, pressed));
}

TEST_F(InputReporterTest, TenThousandMotionsASecondBecomeTwoHundredAndFifty)
{
    reporter.touch(finger(0, Phase::down));
    for (std::uint32_t count = 0; count < 10'000; ++count) {
        reporter.touch(finger(0, Phase::motion, count));
        loop.advance(100us);
    }
    loop.advance(1s);
    EXPECT_GE(sent.size(), 200u);
    EXPECT_LE(sent.size(), 252u);
    EXPECT_EQ(sent.back(), LinkFrame(finger(0, Phase::motion, 9'999))) << "the newest";
}

TEST_F(InputReporterTest, EverythingThatIsDownIsLifted)
{
    reporter.touch(finger(3, Phase::down, 9));
    reporter.pen(penAt(1, true));
    reporter.pointer(pointerAt(4, 3));
    reporter.pointer(pointerAt(5, 3));
    reporter.pointer(pointerAt(6, 3));
    reporter.key({30, true});
    reporter.key({42, true});
    takeSent();
    reporter.liftAll();
    EXPECT_THAT(takeSent(), ElementsAre(LinkFrame(finger(3, Phase::cancel, 9)),
                                        LinkPen{.place = at(1), .isNear = false}, pointerAt(6),
                                        LinkKey{30, false}, LinkKey{42, false}));
    reporter.liftAll();
    loop.advance(1s);
    EXPECT_THAT(sent, IsEmpty()) << "once";
}

TEST_F(InputReporterTest, WhatWasLiftedStaysUpUntilItIsPressedAgain)
{
    reporter.touch(finger(0, Phase::down));
    reporter.key({30, true});
    reporter.liftAll();
    takeSent();
    reporter.touch(finger(0, Phase::motion, 2));
    reporter.touch(finger(0, Phase::up, 3));
    reporter.key({30, false});
    EXPECT_THAT(sent, IsEmpty());
    EXPECT_FALSE(reporter.isDown(0));
    reporter.touch(finger(0, Phase::down));
    reporter.key({30, true});
    EXPECT_THAT(sent, SizeIs(2));
}

TEST_F(InputReporterTest, LiftsEverythingWhenTheHostWantsNoMore)
{
    reporter.pointer(pointerAt(4, 1));
    reporter.key({30, true});
    takeSent();
    reporter.setOptions({.touch = true, .typing = false});
    EXPECT_THAT(takeSent(), ElementsAre(LinkFrame(LinkKey{30, false})));
    reporter.setOptions({});
    EXPECT_THAT(takeSent(), ElementsAre(LinkFrame(pointerAt(4))));
    reporter.pointer(pointerAt(5, 1));
    loop.advance(1s);
    EXPECT_THAT(sent, IsEmpty());
}

TEST_F(InputReporterTest, MotionsThatWaitAreForgottenWithTheOption)
{
    reporter.pointer(pointerAt(1));
    reporter.pointer(pointerAt(2));
    takeSent();
    reporter.setOptions({});
    loop.advance(1s);
    EXPECT_THAT(sent, IsEmpty());
}

TEST_F(InputReporterTest, CutsTextsAtCharactersAndMakesThemPlain)
{
    std::string text;
    for (int count = 0; count < 150; ++count)
        text += "é";
    reporter.text(text);
    ASSERT_THAT(sent, SizeIs(2));
    EXPECT_EQ(std::get<LinkText>(sent[0]).text.size(), kLinkTextLimit);
    EXPECT_EQ(std::get<LinkText>(sent[0]).text + std::get<LinkText>(sent[1]).text, text);
    takeSent();
    reporter.text("a\x1b\xc2\x85z");
    EXPECT_THAT(sent, ElementsAre(LinkFrame(LinkText{"a  z"})));
}

TEST_F(InputReporterTest, AReporterThatIsGoneTellsNothing)
{
    {
        InputReporter other(loop, [this](const LinkFrame& frame) { sent.push_back(frame); });
        other.setOptions({.touch = true});
        other.pointer(pointerAt(1));
        other.pointer(pointerAt(2));
        takeSent();
    }
    loop.advance(1s);
    EXPECT_THAT(sent, IsEmpty());
}

} // namespace
} // namespace farview
