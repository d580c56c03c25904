#include "Applications/Doctor/PairingAnswer.h"

#include "Common/FVEDistributedNotifications.h"
#include "Platform/Fake/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

using namespace farview;
using testing::HasSubstr;
using Answer = PairingAnswer::Answer;
using State = PairingReport::State;

namespace
{

class PairingAnswerTest : public testing::Test
{
protected:
    using Post = FakeDistributedNotificationCenter::Post;

    void begin(Answer kind)
    {
        answer =
            std::make_shared<PairingAnswer>(fake.platform(), [](const auto& text) { return text; });
        answer->start(kind, "482913", [this](const Outcome& told) {
            EXPECT_FALSE(outcome) << "told twice";
            outcome = told;
        });
        EXPECT_EQ(center.countOf(kQueryRequestForConnectedHost), 1);
    }
    void hear(State state, const std::string& digits = "482913", const std::string& device = "Desk")
    {
        const auto text = textOfPairingReport({state, digits, device});
        center.postFromAnotherProcess(kServerPairingDidChange, {{kPairingReportKey, text}});
        fake.runLoop.runUntilIdle();
    }
    void settle() { fake.runLoop.advance(PairingAnswer::settling); }
    void hearConnected()
    {
        center.postFromAnotherProcess(kServerConnectedToDevice, {{kDeviceNameKey, "desk.local"}});
        fake.runLoop.runUntilIdle();
    }
    void expect(bool isDone, const std::string& words)
    {
        ASSERT_TRUE(outcome);
        EXPECT_EQ(outcome->isDone, isDone);
        EXPECT_THAT(outcome->text, HasSubstr(words));
    }
    void expectNothingAnswered() const
    {
        EXPECT_EQ(center.countOf(kConfirmDevice), 0);
        EXPECT_EQ(center.countOf(kRefuseDevice), 0);
    }

    FakePlatform fake;
    FakeDistributedNotificationCenter& center = fake.distributedNotificationCenter;
    std::shared_ptr<PairingAnswer> answer;
    std::optional<Outcome> outcome;
};

TEST_F(PairingAnswerTest, ConfirmsTheDigitsThatAreInQuestionAndTellsWhatIsLeftToDo)
{
    begin(Answer::confirm);
    hear(State::comparing);
    EXPECT_EQ(center.postsNamed(kConfirmDevice),
              (std::vector<Post>{{kConfirmDevice, "", {{kDigitsKey, "482913"}}, 3}}));
    EXPECT_FALSE(outcome) << "the server has not taken it yet";
    hear(State::comparing);
    EXPECT_EQ(center.countOf(kConfirmDevice), 1);
    hear(State::confirmed);
    settle();
    expect(true, "Now confirm it at Desk, too.");
}

TEST_F(PairingAnswerTest, TellsThatADeviceIsConnectedWhoseUserWasQuicker)
{
    begin(Answer::confirm);
    hear(State::comparing);
    hear(State::confirmed);
    hear(State::none);
    EXPECT_FALSE(outcome) << "connected, or refused by another program: that is to come";
    hearConnected();
    expect(true, "Connected to desk.local");
    fake.runLoop.advance(Duration(10));
}

TEST_F(PairingAnswerTest, ConfirmsNoOtherDigits)
{
    begin(Answer::confirm);
    hear(State::comparing, "482914");
    expect(false, "No device asks about 482 913 now.\nDoes Desk show 482\u00A0914?");
    hear(State::comparing);
    expectNothingAnswered();
}

TEST_F(PairingAnswerTest, ConfirmsNothingWhereNothingIsInQuestion)
{
    begin(Answer::confirm);
    hear(State::none);
    expect(false, "No device asks about 482 913 now.");
    expectNothingAnswered();
}

TEST_F(PairingAnswerTest, AServerThatTellsOfTheConnectionAloneHasNothingInQuestion)
{
    for (const char* told : {kServerDisconnectedFromDevice, kQueryResultForConnectedHost}) {
        center.forgetPosts();
        outcome.reset();
        begin(Answer::confirm);
        center.postFromAnotherProcess(told);
        fake.runLoop.runUntilIdle();
        EXPECT_FALSE(outcome);
        settle();
        expect(false, "No device asks about 482 913 now.");
    }
}

TEST_F(PairingAnswerTest, WaitsForTheQuestionAfterWhatIsToldOfTheConnection)
{
    begin(Answer::confirm);
    center.postFromAnotherProcess(kServerDisconnectedFromDevice);
    hear(State::comparing);
    settle();
    EXPECT_FALSE(outcome);
    hear(State::confirmed);
    settle();
    expect(true, "Now confirm it at Desk, too.");
}

TEST_F(PairingAnswerTest, ConfirmingTwiceComesToTheSame)
{
    begin(Answer::confirm);
    hear(State::confirmed);
    settle();
    expect(true, "Now confirm it at Desk, too.");
    expectNothingAnswered();
}

TEST_F(PairingAnswerTest, TellsHowItEndedBadly)
{
    begin(Answer::confirm);
    hear(State::comparing);
    hear(State::interfered);
    expect(false, "Something between this computer and Desk changes what they say.");
}

TEST_F(PairingAnswerTest, TellsThatAnotherProgramRefusedMeanwhile)
{
    begin(Answer::confirm);
    hear(State::comparing);
    hear(State::none);
    settle();
    expect(false, "No device asks about 482 913 now.");
}

TEST_F(PairingAnswerTest, RefusesAlsoWhatWasConfirmedHere)
{
    for (const auto state : {State::comparing, State::confirmed}) {
        center.forgetPosts();
        outcome.reset();
        begin(Answer::refuse);
        hear(state);
        EXPECT_EQ(center.postsNamed(kRefuseDevice),
                  (std::vector<Post>{{kRefuseDevice, "", {{kDigitsKey, "482913"}}, 3}}));
        hear(State::none);
        settle();
        expect(true, "The device is not confirmed. No picture was sent.");
    }
}

TEST_F(PairingAnswerTest, ARefusalThatComesTooLateIsNone)
{
    begin(Answer::refuse);
    hear(State::confirmed);
    hear(State::none);
    hearConnected();
    expect(false, "Connected to desk.local");
}

TEST_F(PairingAnswerTest, WithoutAServerItEndsInTime)
{
    begin(Answer::confirm);
    fake.runLoop.advance(PairingAnswer::limit);
    expect(false, "The screen server does not answer.");
}

TEST_F(PairingAnswerTest, TellsThatTheDevicesUserRefusedAtOnce)
{
    begin(Answer::confirm);
    hear(State::comparing);
    hear(State::confirmed);
    hear(State::refusedThere);
    expect(false, "Somebody said no at Desk. No picture was sent.");
}

TEST_F(PairingAnswerTest, AServerThatSaysNothingMoreIsNotWaitedForWithoutEnd)
{
    begin(Answer::confirm);
    hear(State::comparing);
    fake.runLoop.advance(PairingAnswer::limit);
    expect(false, "The screen server does not answer.");
}

TEST_F(PairingAnswerTest, NoForeignNameControlsTheTerminal)
{
    begin(Answer::confirm);
    hear(State::confirmed, "482913", "Desk\x1b[2J%2$@");
    settle();
    expect(true, "Desk\\x1B[2J%2$@");
}

} // namespace
