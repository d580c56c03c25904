#include "Platform/Desktop/Screens/X11/X11VirtualScreens.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Support/InputTestDevice.h"
#include "Tests/Support/InputWindow.h"
#include "Tests/Support/PrivateXServer.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>

#include <linux/input-event-codes.h>

namespace farview
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using Events = std::vector<std::string>;

/// A place on the monitor; where that is on the desktop, the sink works out.
InputPlace at(double x, double y) { return {x, y, 0, 0}; }

TouchPoint finger(int number, TouchPhase phase, double x, double y)
{
    TouchPoint point{};
    point.finger = number;
    point.phase = phase;
    point.place = at(x, y);
    return point;
}

/// A monitor to the right of the user's screen, and a program's window over both.
class X11InputSinkTest : public testing::Test
{
protected:
    X11InputSinkTest() { mOthers.showOnce(1); }

    void open(bool hasInput = true)
    {
        mScreen = mScreens.open({.name = "Tablet", .width = 1024, .height = 600, .input = hasInput},
                                mListener);
        ASSERT_TRUE(waitUntil([&] { return mListener->geometry.has_value(); }));
        ASSERT_TRUE(!hasInput || waitUntil([&] { return input().abilities().touch; }));
    }
    InputSink& input() { return mScreen->input(); }
    void click(PointerButton button)
    {
        input().button(button, true);
        input().button(button, false);
    }
    /// Those of a kind, or all, until as many have come; then no more may come.
    Events events(std::size_t count, const std::string& kind = "")
    {
        Events all;
        const auto take = [&] {
            std::ranges::copy_if(mWindow.takeEvents(), std::back_inserter(all),
                                 [&](const auto& event) { return event.starts_with(kind); });
            return all.size() >= count;
        };
        waitUntil(take);
        runLoopFor(std::chrono::milliseconds(count == 0 ? 100 : 5));
        take();
        return all;
    }
    Events presses(std::size_t count) { return events(count, "down"); }
    /// The pointer goes with the first finger.
    Events touches(std::size_t count) { return events(count, "touch"); }
    bool isTyped(const std::string& text)
    {
        return waitUntil([&] { return mWindow.typed() == text; });
    }

    PrivateXServer mServer;
    ScreenArranger mOthers{mServer.display()};
    InputTestDevices mDevices{mServer.folder()};
    InputWindow mWindow{mServer.display(), 0, 0, 4000, 3000};
    QtRunLoop mLoop;
    X11VirtualScreens mScreens{mLoop, FARVIEW_MONITOR_WATCHER, mDevices.maker()};
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
    std::unique_ptr<VirtualScreen> mScreen;
};

TEST_F(X11InputSinkTest, ThePointerGoesToThePixel)
{
    open();
    for (const auto& place : {at(0, 0), at(1023.9, 599.9), at(512.5, 7)})
        input().movePointer(place);
    EXPECT_THAT(events(3), ElementsAre("move 1920,0", "move 2943,599", "move 2432,7"));
}

TEST_F(X11InputSinkTest, ThePointerFollowsTheMonitorToAnotherPlace)
{
    open();
    mScreen->place(pixelPoint(100, 1080));
    ASSERT_TRUE(waitUntil([&] { return mListener->geometry->area.y == 1080; }));
    input().movePointer(at(3, 4));
    EXPECT_THAT(events(1), ElementsAre("move 103,1084"));
}

TEST_F(X11InputSinkTest, ReachesAMonitorThatNoOutputShows)
{
    mOthers.beWindowManager("Openbox");
    for (std::size_t index = 1; index < mOthers.outputs().size(); ++index)
        mOthers.show(index, 0, 0);
    open();
    EXPECT_EQ(mListener->geometry->area, pixelRect(1920, 0, 1024, 600));
    input().movePointer(at(1000, 500));
    EXPECT_THAT(events(1), ElementsAre("move 2920,500"));
    input().touch(finger(0, TouchPhase::down, 1023, 599));
    EXPECT_THAT(touches(1), ElementsAre("touch 1 begins 2943,599"));
}

TEST_F(X11InputSinkTest, PlacesBesideTheMonitorMeanNothing)
{
    open();
    for (const auto& place : {at(-1, 5), at(5, -0.5), at(1024, 5), at(5, 600), at(1e12, 5),
                              at(std::nan(""), 5), InputPlace{-500, 20, 1420, 20}}) {
        input().movePointer(place);
        input().touch(finger(0, TouchPhase::down, place.x, place.y));
        input().pen({place});
        click(PointerButton::left);
        input().wheel(0, 3);
    }
    EXPECT_THAT(events(0), IsEmpty());
}

TEST_F(X11InputSinkTest, PressesEveryButtonWhereItsUserPutThePointer)
{
    open();
    input().movePointer(at(10, 10));
    EXPECT_THAT(events(1), ElementsAre("move 1930,10"));
    // The user's own mouse.
    mOthers.movePointer(50, 60);
    EXPECT_THAT(events(1), ElementsAre("move 50,60"));
    click(PointerButton::left);
    EXPECT_THAT(events(3), ElementsAre("move 1930,10", "down 1 1930,10", "up 1 1930,10"));
    for (const auto button :
         {PointerButton::middle, PointerButton::right, PointerButton::back, PointerButton::forward})
        click(button);
    EXPECT_THAT(presses(4), ElementsAre("down 2 1930,10", "down 3 1930,10", "down 8 1930,10",
                                        "down 9 1930,10"));
}

TEST_F(X11InputSinkTest, TheWheelTurnsWholeNotchesAndKeepsTheRest)
{
    open();
    input().movePointer(at(0, 0));
    ASSERT_EQ(events(1).size(), 1u);
    for (int part = 0; part < 5; ++part)
        input().wheel(0, 0.5);
    input().wheel(-1, 0);
    input().wheel(1.25, -1);
    input().wheel(std::nan(""), 1e300);
    EXPECT_THAT(presses(4),
                ElementsAre("down 5 1920,0", "down 5 1920,0", "down 6 1920,0", "down 7 1920,0"));
}

TEST_F(X11InputSinkTest, KeysAreThoseOfTheKernel)
{
    open();
    input().key(KEY_LEFTSHIFT, true);
    for (const auto code : {KEY_H, KEY_I}) {
        input().key(static_cast<std::uint16_t>(code), true);
        input().key(static_cast<std::uint16_t>(code), false);
    }
    input().key(KEY_LEFTSHIFT, false);
    // Those that an X server cannot have.
    input().key(248, true);
    input().key(767, true);
    EXPECT_TRUE(isTyped("HI"));
    EXPECT_THAT(mWindow.keys(), IsEmpty());
}

TEST_F(X11InputSinkTest, WritesTextThatTheLayoutHasAndTextThatItHasNot)
{
    const auto before = describedKeyboard(mServer.display());
    open();
    input().text("Tschüß, мир! 漢字 😀\n");
    EXPECT_TRUE(isTyped("Tschüß, мир! 漢字 😀\r")) << mWindow.typed();
    EXPECT_TRUE(waitUntil([&] { return describedKeyboard(mServer.display()) == before; }));
}

TEST_F(X11InputSinkTest, GivesLentKeysBackAtItsEnd)
{
    const auto before = describedKeyboard(mServer.display());
    open();
    input().text("ж");
    ASSERT_TRUE(isTyped("ж"));
    mScreen.reset();
    EXPECT_EQ(describedKeyboard(mServer.display()), before);
}

TEST_F(X11InputSinkTest, TwoFingersAreTwoFingers)
{
    open();
    input().touch(finger(0, TouchPhase::down, 0, 0));
    input().touch(finger(5, TouchPhase::down, 1023, 599));
    input().touch(finger(0, TouchPhase::motion, 100, 200));
    input().touch(finger(5, TouchPhase::up, 1023, 599));
    input().touch(finger(0, TouchPhase::up, 100, 200));
    EXPECT_THAT(touches(5), ElementsAre("touch 1 begins 1920,0", "touch 2 begins 2943,599",
                                        "touch 1 goes on 2020,200", "touch 2 ends 2943,599",
                                        "touch 1 ends 2020,200"));
}

TEST_F(X11InputSinkTest, FingersAreWhereTheMonitorIsNow)
{
    open();
    mScreen->place(pixelPoint(0, 1080));
    mScreen->resize(600, 1024);
    ASSERT_TRUE(waitUntil([&] { return mListener->geometry->height == 1024; }));
    input().touch(finger(0, TouchPhase::down, 599, 1023));
    EXPECT_THAT(touches(1), ElementsAre("touch 1 begins 599,2103"));
}

TEST_F(X11InputSinkTest, AMonitorThatIsMovedLiftsTheFingersWhereTheyAre)
{
    open();
    input().touch(finger(0, TouchPhase::down, 10, 10));
    EXPECT_THAT(touches(1), ElementsAre("touch 1 begins 1930,10"));
    mScreen->place(pixelPoint(0, 1080));
    EXPECT_THAT(touches(1), ElementsAre("touch 1 ends 1930,10"));
    input().touch(finger(0, TouchPhase::motion, 20, 20));
    EXPECT_THAT(touches(0), IsEmpty());
}

TEST_F(X11InputSinkTest, AMonitorThatOthersMoveTakesAlongWhatIsDown)
{
    open();
    input().touch(finger(0, TouchPhase::down, 10, 10));
    EXPECT_THAT(touches(1), ElementsAre("touch 1 begins 1930,10"));
    mOthers.setScreenSize(2944, 2160);
    mOthers.show(1, 0, 1080);
    EXPECT_THAT(touches(2), ElementsAre("touch 1 goes on 10,1090", "touch 1 ends 10,1090"));
}

TEST_F(X11InputSinkTest, NoDesktopMapsTheTouchScreenElsewhere)
{
    open();
    mapTouchScreen(mServer.display(), {0.25F, 0, 0, 0, 0.25F, 0, 0, 0, 1});
    EXPECT_TRUE(waitUntil([&] {
        input().touch(finger(0, TouchPhase::down, 100, 100));
        input().touch(finger(0, TouchPhase::up, 100, 100));
        return touches(2).front().ends_with(" begins 2020,100");
    }));
}

TEST_F(X11InputSinkTest, HasSeveralFingersWhileTheServerHasTheDevice)
{
    open();
    EXPECT_EQ(input().abilities(), (InputAbilities{true, true, true, true}));
    enableTouchScreen(mServer.display(), false);
    EXPECT_TRUE(waitUntil([&] { return !input().abilities().touch; }));
    EXPECT_TRUE(input().abilities().pen);
    input().touch(finger(0, TouchPhase::down, 10, 10));
    enableTouchScreen(mServer.display(), true);
    EXPECT_TRUE(waitUntil([&] { return input().abilities().touch; }));
    EXPECT_THAT(touches(0), IsEmpty());
}

TEST_F(X11InputSinkTest, APenHoversAndPresses)
{
    open();
    PenState state{at(50, 60)};
    input().pen(state);
    state.isDown = true;
    state.pressure = 0.7;
    input().pen(state);
    state.isNear = false;
    input().pen(state);
    EXPECT_THAT(events(3), ElementsAre("move 1970,60", "down 1 1970,60", "up 1 1970,60"));
}

TEST_F(X11InputSinkTest, ReleasesEverythingAtItsEnd)
{
    open();
    input().movePointer(at(10, 10));
    input().button(PointerButton::left, true);
    input().key(KEY_A, true);
    EXPECT_THAT(events(2), ElementsAre("move 1930,10", "down 1 1930,10"));
    ASSERT_TRUE(waitUntil([&] { return !mWindow.keys().empty(); }));
    mScreen.reset();
    EXPECT_THAT(events(1), testing::Contains("up 1 1930,10"));
    EXPECT_TRUE(waitUntil([&] { return mWindow.keys().empty(); }));
}

TEST_F(X11InputSinkTest, AMonitorThatIsTakenAwayLiftsEverything)
{
    open();
    input().touch(finger(0, TouchPhase::down, 10, 10));
    input().key(KEY_A, true);
    EXPECT_THAT(touches(1), ElementsAre("touch 1 begins 1930,10"));
    mOthers.hide(1);
    EXPECT_THAT(touches(1), ElementsAre(testing::StartsWith("touch 1 ends")));
    EXPECT_TRUE(waitUntil([&] { return heldDown(mServer.display()).empty(); }));
    input().key(KEY_A, true);
    input().touch(finger(0, TouchPhase::down, 10, 10));
    EXPECT_THAT(touches(0), IsEmpty());
    EXPECT_EQ(heldDown(mServer.display()), "");
}

TEST_F(X11InputSinkTest, IsAbleToDoNothingOnceTheServerHasGone)
{
    open();
    mServer.process().kill();
    EXPECT_TRUE(waitUntil([&] { return input().abilities() == InputAbilities(); }));
    input().movePointer(at(10, 10));
    input().touch(finger(0, TouchPhase::down, 10, 10));
    mScreen.reset();
}

TEST_F(X11InputSinkTest, AGrabbedPointerGoesToItsProgramAndHoldsNobodyUp)
{
    open();
    InputWindow other(mServer.display(), 0, 0, 1, 1);
    other.grabPointer(true);
    input().movePointer(at(10, 10));
    click(PointerButton::left);
    Events theirs;
    EXPECT_TRUE(waitUntil([&] {
        std::ranges::move(other.takeEvents(), std::back_inserter(theirs));
        return theirs == Events{"move 1930,10", "down 1 1930,10", "up 1 1930,10"};
    }));
    other.grabPointer(false);
    input().movePointer(at(11, 10));
    EXPECT_THAT(events(1), testing::Contains("move 1931,10"));
}

/// Window managers do so while they drag a window, until the button is lifted.
TEST_F(X11InputSinkTest, ComesThroughToAProgramThatKeepsAllOthersOut)
{
    open();
    mWindow.grabServer(true);
    input().movePointer(at(10, 10));
    click(PointerButton::left);
    EXPECT_THAT(events(3), ElementsAre("move 1930,10", "down 1 1930,10", "up 1 1930,10"));
    mWindow.grabServer(false);
}

TEST_F(X11InputSinkTest, TenThousandsOfEventsForAServerThatStandsStillAreForgottenAndAllIsLifted)
{
    open();
    input().movePointer(at(10, 10));
    input().button(PointerButton::left, true);
    EXPECT_THAT(presses(1), ElementsAre("down 1 1930,10"));
    mServer.process().sendSignal(SIGSTOP);
    // Its socket takes some thousands.
    for (int count = 0; count < 40000; ++count)
        input().movePointer(at(count % 1000, 0));
    mServer.process().sendSignal(SIGCONT);
    EXPECT_THAT(events(1, "up"), ElementsAre(testing::StartsWith("up 1")));
}

TEST_F(X11InputSinkTest, NothingIsPassedOnUnlessItWasWished)
{
    open(false);
    EXPECT_EQ(input().abilities(), InputAbilities());
    input().movePointer(at(10, 10));
    click(PointerButton::left);
    EXPECT_THAT(events(0), IsEmpty());
}

TEST_F(X11InputSinkTest, WithoutDevicesItIsAPointerAndAKeyboard)
{
    X11VirtualScreens bare(mLoop, FARVIEW_MONITOR_WATCHER, [] { return nullptr; });
    mScreen = bare.open({.name = "Tablet", .width = 1024, .height = 600, .input = true}, mListener);
    ASSERT_TRUE(waitUntil([&] { return mListener->geometry && input().abilities().pointer; }));
    EXPECT_EQ(input().abilities(),
              (InputAbilities{.pointer = true, .keys = true, .touchWithARight = true}));
    input().touch(finger(0, TouchPhase::down, 10, 10));
    input().movePointer(at(10, 10));
    EXPECT_THAT(events(1), ElementsAre("move 1930,10"));
}

} // namespace
} // namespace farview
