#include "Platform/Desktop/Screens/Mutter/MutterSession.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/Mutter/MutterVirtualScreens.h"
#include "Platform/Desktop/Screens/StreamInput.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Desktop/ScriptedMutter.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace farview
{
namespace
{

const QString accessDenied = QStringLiteral("org.freedesktop.DBus.Error.AccessDenied");

class MutterSessionTest : public testing::Test
{
protected:
    std::optional<ScreenObstacle> obstacle()
    {
        std::optional<ScreenAvailability> answer;
        mScreens.availability(mListener, [&](const auto& found) { answer = found; });
        EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }));
        return answer->way ? std::nullopt : std::optional(answer->obstacle);
    }
    void open()
    {
        mScreen = mScreens.open({.name = "Tablet", .width = 1024, .height = 600}, mListener);
    }
    bool becomes(const std::string& member)
    {
        return waitUntil([&] { return mMutter.wasAsked(member); });
    }
    int count(const std::string& member)
    {
        return static_cast<int>(std::count(mMutter.calls.begin(), mMutter.calls.end(), member));
    }
    std::optional<ScreenObstacle> end()
    {
        EXPECT_TRUE(waitUntil([&] { return mListener->end.has_value(); }));
        return mListener->end;
    }

    PrivateBus mPrivateBus;
    SessionBusScope mScope{mPrivateBus.address()};
    ScriptedMutter mMutter{mPrivateBus.address()};
    FakeLog mLog;
    TestBus mBus{mLog};
    QtRunLoop mLoop;
    MutterVirtualScreens mScreens{mLoop, mBus};
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
    std::unique_ptr<VirtualScreen> mScreen;
};

TEST_F(MutterSessionTest, AMonitorIsPossibleWhereMutterHasTheOperations)
{
    EXPECT_EQ(obstacle(), std::nullopt);
    EXPECT_FALSE(mMutter.wasAsked("CreateSession"));
}

TEST_F(MutterSessionTest, AnOlderMutterLacksTheProtocol)
{
    mMutter.version = 2;
    EXPECT_EQ(obstacle(), ScreenObstacle::protocolMissing);
}

TEST_F(MutterSessionTest, WithoutRemoteDesktopsTheProtocolIsMissing)
{
    mMutter.leave("org.gnome.Mutter.RemoteDesktop");
    EXPECT_EQ(obstacle(), ScreenObstacle::protocolMissing);
    open();
    EXPECT_EQ(end(), ScreenObstacle::protocolMissing);
}

TEST_F(MutterSessionTest, ALockedScreenIsAnObstacle)
{
    mMutter.isLocked = true;
    EXPECT_EQ(obstacle(), ScreenObstacle::locked);
    mMutter.error = accessDenied;
    open();
    EXPECT_EQ(end(), ScreenObstacle::locked);
}

TEST_F(MutterSessionTest, ARefusalIsAnObstacle)
{
    mMutter.error = accessDenied;
    open();
    EXPECT_EQ(end(), ScreenObstacle::notPermitted);
}

TEST_F(MutterSessionTest, ARefusalWithoutAReasonIsAFailure)
{
    mMutter.error = QStringLiteral("org.freedesktop.DBus.Error.Failed");
    open();
    EXPECT_EQ(end(), ScreenObstacle::failed);
}

TEST_F(MutterSessionTest, EndsAsTakenAwayWhenOthersCloseIt)
{
    open();
    ASSERT_TRUE(becomes("GetCurrentState"));
    mMutter.closeSession();
    EXPECT_EQ(end(), ScreenObstacle::takenAway);
}

TEST_F(MutterSessionTest, EndsAsLockedWhenTheLockScreenClosesIt)
{
    open();
    ASSERT_TRUE(becomes("GetCurrentState"));
    mMutter.isLocked = true;
    mMutter.closeSession();
    EXPECT_EQ(end(), ScreenObstacle::locked);
}

TEST_F(MutterSessionTest, EndsWithTheBus)
{
    open();
    ASSERT_TRUE(becomes("GetCurrentState"));
    mPrivateBus.stop();
    EXPECT_EQ(end(), ScreenObstacle::gone);
}

TEST_F(MutterSessionTest, OnesOwnEndStopsIt)
{
    open();
    ASSERT_TRUE(becomes("GetCurrentState"));
    mScreen.reset();
    EXPECT_TRUE(becomes("Stop"));
    EXPECT_EQ(mListener->end, std::nullopt);
}

TEST_F(MutterSessionTest, OneThatComesAfterItsOwnersEndIsStopped)
{
    mMutter.held = "CreateSession";
    open();
    ASSERT_TRUE(becomes("CreateSession"));
    mScreen.reset();
    EXPECT_FALSE(mMutter.wasAsked("Stop"));
    mMutter.answerHeld();
    EXPECT_TRUE(becomes("Stop"));
}

TEST_F(MutterSessionTest, InputIsPassedOnWhileItGoesOn)
{
    bool isPrepared = false;
    bool hasEnded = false;
    MutterSession session(
        mBus, {[&] { isPrepared = true; }, [](auto) {}, [&](auto) { hasEnded = true; }});
    const ScreenWish wish{.name = "Tablet", .width = 1024, .height = 600, .input = true};
    StreamInput input(session, wish);
    session.prepare();
    ASSERT_TRUE(waitUntil([&] { return isPrepared; }));
    session.start();
    input.key(1, true);
    input.setMonitor({pixelRect(0, 0, 1024, 600), 1024, 600});
    input.key(2, true);
    input.touch({.place = {.x = 10, .y = 10}});
    EXPECT_TRUE(becomes("NotifyTouchDown"));
    EXPECT_EQ(count("NotifyKeyboardKeycode"), 1);
    mMutter.closeSession();
    ASSERT_TRUE(waitUntil([&] { return hasEnded; }));
    input.key(3, true);
    input.end();
    session.stop();
    EXPECT_TRUE(becomes("Stop"));
    EXPECT_EQ(count("NotifyKeyboardKeycode"), 1);
    EXPECT_EQ(count("NotifyTouchUp"), 0);
}

TEST_F(MutterSessionTest, AFingerIsLiftedOnceMutterKnowsThatItIsDown)
{
    bool isPrepared = false;
    MutterSession session(mBus, {[&] { isPrepared = true; }, [](auto) {}, [](auto) {}});
    const ScreenWish wish{.name = "Tablet", .width = 1024, .height = 600, .input = true};
    StreamInput input(session, wish);
    session.prepare();
    ASSERT_TRUE(waitUntil([&] { return isPrepared; }));
    session.start();
    input.setMonitor({pixelRect(0, 0, 1024, 600), 1024, 600});
    mMutter.held = "Get";
    input.touch({.place = {.x = 10, .y = 10}});
    input.touch({.phase = TouchPhase::motion, .place = {.x = 20, .y = 10}});
    input.touch({.phase = TouchPhase::up});
    input.key(30, true);
    ASSERT_TRUE(becomes("NotifyTouchMotion"));
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_FALSE(mMutter.wasAsked("NotifyTouchUp"));
    mMutter.held.clear();
    mMutter.answerHeld();
    ASSERT_TRUE(becomes("NotifyKeyboardKeycode"));
    EXPECT_EQ(mMutter.calls.back(), "NotifyKeyboardKeycode");
    EXPECT_EQ(count("NotifyTouchUp"), 1);
}

TEST_F(MutterSessionTest, InputThatIsHeldTwiceGoesOnOnce)
{
    bool isPrepared = false;
    MutterSession session(mBus, {[&] { isPrepared = true; }, [](auto) {}, [](auto) {}});
    const ScreenWish wish{.name = "Tablet", .width = 1024, .height = 600, .input = true};
    StreamInput input(session, wish);
    session.prepare();
    ASSERT_TRUE(waitUntil([&] { return isPrepared; }));
    session.start();
    input.setMonitor({pixelRect(0, 0, 1024, 600), 1024, 600});
    int holds = 0;
    input.hold([&] { ++holds; });
    input.key(30, true);
    input.hold([&] { ++holds; });
    input.goOn();
    ASSERT_TRUE(waitUntil([&] { return holds == 2; }));
    EXPECT_FALSE(mMutter.wasAsked("NotifyKeyboardKeycode"));
    input.goOn();
    input.goOn();
    input.key(30, false);
    EXPECT_TRUE(waitUntil([&] { return count("NotifyKeyboardKeycode") == 2; }));
}

TEST_F(MutterSessionTest, AMonitorThatIsToBecomeSmallerTakesNoInputBeyondItsNewEdge)
{
    bool isPrepared = false;
    MutterSession session(mBus, {[&] { isPrepared = true; }, [](auto) {}, [](auto) {}});
    ScreenWish wish{.name = "Tablet", .width = 1024, .height = 600, .input = true};
    StreamInput input(session, wish);
    session.prepare();
    ASSERT_TRUE(waitUntil([&] { return isPrepared; }));
    session.start();
    input.setMonitor({pixelRect(0, 0, 1024, 600), 1024, 600});
    wish.width = 800;
    input.touch({.finger = 0, .place = {.x = 800, .y = 10}});
    input.touch({.finger = 1, .place = {.x = 799, .y = 10}});
    input.end();
    EXPECT_TRUE(becomes("NotifyTouchUp"));
    EXPECT_EQ(count("NotifyTouchDown"), 1);
}

TEST_F(MutterSessionTest, SizesThatNoScreenHasAreRefusedUnasked)
{
    for (const auto& [width, height] :
         {std::pair(65535, 65535), std::pair(0, 0), std::pair(-5, 9)}) {
        *mListener = {};
        mScreen = mScreens.open({.name = "Tablet", .width = width, .height = height}, mListener);
        EXPECT_EQ(end(), ScreenObstacle::tooLarge) << width;
    }
    EXPECT_FALSE(mMutter.wasAsked("CreateSession"));
}

} // namespace
} // namespace farview
