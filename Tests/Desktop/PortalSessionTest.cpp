#include "Platform/Desktop/Screens/Portal/PortalSession.h"

#include "Platform/Fake/FakeLog.h"
#include "Tests/Desktop/ScriptedScreenPortal.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>

#include <sys/socket.h>

namespace farview
{
namespace
{

using testing::ElementsAre;

class PortalSessionTest : public testing::Test
{
protected:
    PortalSessionTest() { mPortal.remote = mRemote.get(); }

    void begin(bool wantsInput = true)
    {
        mSession = std::make_unique<PortalSession>(
            mBus,
            PortalMemory{[this](auto&) { return mWord; },
                         [this](auto&, auto& word) { mWords.push_back(mWord = word); }},
            PortalSession::Events{[this] { ++mQuestions; },
                                  [this](auto stream) { mStream = std::move(stream); },
                                  [this](auto reason) { mEnds.push_back(reason); }});
        mSession->begin("Tablet", wantsInput);
    }
    bool starts()
    {
        return waitUntil([this] { return mStream || !mEnds.empty(); }) && mStream;
    }
    void expectEnd(ScreenObstacle reason)
    {
        EXPECT_TRUE(waitUntil([this] { return !mEnds.empty(); }));
        EXPECT_THAT(mEnds, ElementsAre(reason));
        EXPECT_FALSE(mStream);
    }
    bool isAsked(const char* member)
    {
        return waitUntil([&] { return mPortal.wasAsked(QLatin1String(member)); });
    }
    QVariant option(const char* member, const char* name)
    {
        return mPortal.optionsOf(QLatin1String(member)).value(QLatin1String(name));
    }

    PrivateBus mPrivateBus;
    SessionBusScope mScope{mPrivateBus.address()};
    ScriptedScreenPortal mPortal{mPrivateBus.address()};
    FakeLog mLog;
    TestBus mBus{mLog};
    FileDescriptor mRemote{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    std::string mWord;
    std::vector<std::string> mWords; ///< that were kept
    int mQuestions = 0;
    std::optional<PortalStream> mStream;
    std::vector<ScreenObstacle> mEnds;
    std::unique_ptr<PortalSession> mSession;
};

TEST_F(PortalSessionTest, AsksForAMonitorOfItsOwnWithInput)
{
    mPortal.show({{QStringLiteral("position"), ScriptedScreenPortal::pair(-100, 50)},
                  {QStringLiteral("size"), ScriptedScreenPortal::pair(800, 600)}},
                 42);
    begin();
    ASSERT_TRUE(starts());
    EXPECT_THAT(mPortal.membersOf(QStringLiteral("RemoteDesktop")),
                ElementsAre("CreateSession", "SelectDevices", "Start"));
    EXPECT_THAT(mPortal.membersOf(QStringLiteral("ScreenCast")),
                ElementsAre("SelectSources", "OpenPipeWireRemote"));
    EXPECT_EQ(option("SelectDevices", "types"), 7U);
    EXPECT_EQ(option("SelectSources", "types"), 4U);
    EXPECT_EQ(option("SelectSources", "cursor_mode"), 4U);
    EXPECT_EQ(mStream->source.node, 42U);
    EXPECT_NE(mStream->source.remote.get(), mRemote.get());
    EXPECT_EQ(mStream->area, pixelRect(-100, 50, 800, 600));
    EXPECT_FALSE(mStream->plan.isMirror);
    EXPECT_EQ(mQuestions, 1);
}

TEST_F(PortalSessionTest, WithoutInputItIsASessionThatOnlyShows)
{
    begin(false);
    ASSERT_TRUE(starts());
    EXPECT_THAT(mPortal.membersOf(QStringLiteral("RemoteDesktop")), ElementsAre());
    EXPECT_EQ(option("SelectSources", "persist_mode"), 2U);
    EXPECT_EQ(mSession->inputAbilities(), InputAbilities{});
}

TEST_F(PortalSessionTest, TheWordOfTheLastTimeIsPassedOnAndReplaced)
{
    mWord = "first";
    mPortal.results[QStringLiteral("restore_token")] = QStringLiteral("second");
    begin();
    ASSERT_TRUE(starts());
    EXPECT_EQ(option("SelectDevices", "restore_token"), QStringLiteral("first"));
    EXPECT_EQ(option("SelectDevices", "persist_mode"), 2U);
    EXPECT_FALSE(option("SelectSources", "persist_mode").isValid());
    EXPECT_THAT(mWords, ElementsAre("second"));
}

TEST_F(PortalSessionTest, AWordCountsOnce)
{
    mWord = "first";
    begin();
    ASSERT_TRUE(starts());
    EXPECT_THAT(mWords, ElementsAre(""));
}

TEST_F(PortalSessionTest, AWordThatIsRefusedIsForgottenAndTheUserIsAsked)
{
    mWord = "stale";
    mPortal.error = QStringLiteral("org.freedesktop.portal.Error.InvalidArgument");
    begin();
    ASSERT_TRUE(starts());
    EXPECT_EQ(mWords.front(), "");
    EXPECT_FALSE(option("SelectDevices", "restore_token").isValid());
    EXPECT_TRUE(mEnds.empty());
}

TEST_F(PortalSessionTest, AnOlderPortalRemembersNoInput)
{
    mPortal.remoteDesktop[QStringLiteral("version")] = 1U;
    mWord = "first";
    begin();
    ASSERT_TRUE(starts());
    EXPECT_FALSE(option("SelectDevices", "persist_mode").isValid());
    EXPECT_FALSE(option("SelectDevices", "restore_token").isValid());
    EXPECT_TRUE(mWords.empty());
}

TEST_F(PortalSessionTest, AUserWhoSaysNoIsNotAskedAgain)
{
    mWord = "first";
    mPortal.responses[QStringLiteral("Start")] = 1;
    begin();
    expectEnd(ScreenObstacle::declined);
    ASSERT_TRUE(isAsked("Close"));
    EXPECT_THAT(mPortal.membersOf(QStringLiteral("RemoteDesktop")),
                ElementsAre("CreateSession", "SelectDevices", "Start"));
    EXPECT_TRUE(mWords.empty());
}

TEST_F(PortalSessionTest, AQuestionThatEndsOtherwiseIsAFailure)
{
    mPortal.responses[QStringLiteral("Start")] = 2;
    begin();
    expectEnd(ScreenObstacle::failed);
}

TEST_F(PortalSessionTest, AQuestionStandsUntilTheUserAnswersAndGoesWithTheSession)
{
    mPortal.waiting = QStringLiteral("Start");
    begin();
    ASSERT_TRUE(isAsked("Start"));
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_TRUE(mEnds.empty());
    mSession.reset();
    EXPECT_TRUE(waitUntil([this] {
        return mPortal.membersOf(QStringLiteral("Request")).size() == 1 &&
               mPortal.membersOf(QStringLiteral("Session")).size() == 1;
    }));
}

TEST_F(PortalSessionTest, NothingIsToldOnceItIsStopped)
{
    for (const char* member : {"CreateSession", "SelectSources", "OpenPipeWireRemote"}) {
        mPortal.calls.clear();
        begin();
        ASSERT_TRUE(isAsked(member));
        mSession->stop();
        runLoopFor(std::chrono::milliseconds(50));
        EXPECT_TRUE(mEnds.empty()) << member;
        EXPECT_FALSE(mStream) << member;
    }
}

TEST_F(PortalSessionTest, EndsAsTakenAwayWhenOthersCloseIt)
{
    begin();
    ASSERT_TRUE(starts());
    mPortal.closeSession();
    EXPECT_TRUE(waitUntil([this] { return !mEnds.empty(); }));
    EXPECT_THAT(mEnds, ElementsAre(ScreenObstacle::takenAway));
}

TEST_F(PortalSessionTest, EndsWithThePortal)
{
    mPortal.waiting = QStringLiteral("Start");
    begin();
    ASSERT_TRUE(isAsked("Start"));
    mPortal.leave();
    expectEnd(ScreenObstacle::gone);
}

TEST_F(PortalSessionTest, EndsWithTheBus)
{
    mPortal.waiting = QStringLiteral("Start");
    begin();
    ASSERT_TRUE(isAsked("Start"));
    mPrivateBus.stop();
    expectEnd(ScreenObstacle::gone);
}

TEST_F(PortalSessionTest, WithoutScreensThePortalLacksTheProtocol)
{
    mPortal.screenCast.clear();
    begin();
    expectEnd(ScreenObstacle::protocolMissing);
}

TEST_F(PortalSessionTest, WhatIsNoStreamIsAFailure)
{
    for (const auto& nonsense :
         {QVariant(), QVariant(QStringLiteral("streams")), QVariant(7U),
          QVariant::fromValue(ScriptedStreams{}), QVariant(QStringList{QStringLiteral("7")})}) {
        mEnds.clear();
        mPortal.results[QStringLiteral("streams")] =
            nonsense.isValid() ? nonsense : QVariant(false);
        begin();
        expectEnd(ScreenObstacle::failed);
    }
}

TEST_F(PortalSessionTest, APlaceThatCannotBeIsNone)
{
    using Portal = ScriptedScreenPortal;
    for (const auto& [position, size] :
         {std::pair(Portal::pair(0, 0), Portal::pair(0, 600)),
          std::pair(Portal::pair(0, 0), Portal::pair(800, 1'000'000)),
          std::pair(Portal::pair(-1'000'000, 0), Portal::pair(800, 600)),
          std::pair(Portal::pair(0, 0), QVariant(QStringLiteral("800x600")))}) {
        mStream.reset();
        mPortal.show({{QStringLiteral("position"), position}, {QStringLiteral("size"), size}});
        begin();
        ASSERT_TRUE(starts());
        EXPECT_EQ(mStream->area, std::nullopt);
    }
}

TEST_F(PortalSessionTest, WithoutPipeWireItFails)
{
    mPortal.remote = -1;
    begin();
    expectEnd(ScreenObstacle::failed);
}

TEST_F(PortalSessionTest, InputIsToldInThePortalsOwnTypes)
{
    mPortal.results[QStringLiteral("devices")] = 7U;
    begin();
    ASSERT_TRUE(starts());
    EXPECT_EQ(mSession->inputAbilities(),
              (InputAbilities{.pointer = true, .touch = true, .pen = false, .keys = true}));
    const ScreenWish wish{.name = "Tablet", .width = 800, .height = 600, .input = true};
    StreamInput input(*mSession, wish);
    input.setMonitor({pixelRect(0, 0, 400, 300), 800, 600});
    mPortal.calls.clear();
    input.movePointer({.x = 100, .y = 50});
    input.button(PointerButton::left, true);
    input.wheel(1, 2);
    input.wheel(0, 0.5);
    input.touch({.finger = 3, .place = {.x = 8, .y = 9}});
    input.touch({.finger = 3, .phase = TouchPhase::motion, .place = {.x = 10, .y = 9}});
    input.touch({.finger = 3, .phase = TouchPhase::up});
    input.key(30, true);
    input.text("a");
    ASSERT_TRUE(waitUntil([this] { return mPortal.calls.size() == 12; }));
    std::vector<std::string> told;
    for (const auto& call : mPortal.calls)
        told.push_back((call.member() + u' ' + call.signature().mid(6)).toStdString());
    EXPECT_THAT(told, ElementsAre("NotifyPointerMotionAbsolute udd", "NotifyPointerButton iu",
                                  "NotifyPointerAxisDiscrete ui", "NotifyPointerAxisDiscrete ui",
                                  "NotifyPointerAxis dd", "NotifyTouchDown uudd",
                                  // By whose answer it knows that the finger is down.
                                  "Get ", "NotifyTouchMotion uudd", "NotifyTouchUp u",
                                  "NotifyKeyboardKeycode iu", "NotifyKeyboardKeysym iu",
                                  "NotifyKeyboardKeysym iu"));
    EXPECT_EQ(mPortal.calls.front().arguments().mid(2), (QVariantList{7U, 50.0, 25.0}));
}

TEST_F(PortalSessionTest, WhatTheUserDidNotAllowIsNoAbility)
{
    mPortal.results[QStringLiteral("devices")] = 2U;
    begin();
    ASSERT_TRUE(starts());
    EXPECT_EQ(mSession->inputAbilities(), InputAbilities{.pointer = true});
}

} // namespace
} // namespace farview
