#include "Platform/Desktop/Screens/X11/MonitorWatcher.h"

#include "Platform/Desktop/Screens/X11/MonitorThread.h"
#include "Platform/Desktop/Screens/X11/X11InputSink.h"
#include "Platform/Desktop/Screens/X11/XTestInput.h"
#include "Tests/Desktop/DeadlyXServer.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/InputWindow.h"
#include "Tests/Support/PrivateXServer.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <linux/input-event-codes.h>
#include <unistd.h>

#include <memory>
#include <vector>

namespace farview
{
namespace
{

/// A process that makes monitors and has them until it is killed.
class Maker
{
public:
    explicit Maker(const std::string& display, const char* watcher = FARVIEW_MONITOR_WATCHER,
                   int count = 1)
        : mProcess([&] {
              ::setenv("DISPLAY", display.c_str(), 1);
              std::vector<std::unique_ptr<MonitorThread>> threads;
              while (std::ssize(threads) < count)
                  threads.push_back(std::make_unique<MonitorThread>(
                      ScreenWish{.name = "Tablet", .width = 1024, .height = 600}, watcher,
                      [](const auto&) {}));
              ::pause();
          })
    {
    }
    pid_t pid() const { return mProcess.pid(); }
    void kill() { mProcess.kill(); }

private:
    ForkedProcess mProcess;
};

/// The same with a key and a button held down at its monitor.
class HoldingMaker
{
public:
    explicit HoldingMaker(const std::string& display)
        : mProcess([&] {
              ::setenv("DISPLAY", display.c_str(), 1);
              X11InputSink input([] { return nullptr; });
              const MonitorThread thread({.name = "Tablet", .width = 1024, .height = 600},
                                         FARVIEW_MONITOR_WATCHER, [&](const auto& news) {
                                             news(*input.follower());
                                             input.movePointer({10, 10, 0, 0});
                                             input.button(PointerButton::left, true);
                                             input.key(KEY_A, true);
                                         });
              ::pause();
          })
    {
    }
    void kill() const { mProcess.kill(); }

private:
    ForkedProcess mProcess;
};

class MonitorWatcherTest : public testing::Test
{
protected:
    MonitorWatcherTest() { mOthers.showOnce(1); }
    std::string described() { return describedScreens(mServer.display()); }
    bool isThere() { return mOthers.area(1) == ScreenArranger::Area{1920, 0, 1024, 600}; }
    bool areBothThere()
    {
        return isThere() && mOthers.area(2) == ScreenArranger::Area{2944, 0, 1024, 600};
    }

    /// Kills a maker at its first step, the next one at its second, and so on. Through the server
    /// in between no frame can be captured, so a maker that lives long enough removes its monitor
    /// by itself: death meets every step of making and of removing.
    int stepsSurvived(int monitors = 1)
    {
        const auto before = described();
        int steps = 0;
        for (bool hasKilled = true; hasKilled; ++steps) {
            DeadlyXServer between(mServer.display());
            const Maker maker(between.display(), FARVIEW_MONITOR_WATCHER, monitors);
            between.killAfter(steps + 1, maker.pid());
            EXPECT_TRUE(waitUntil([&] { return between.hasWatched(); })) << "step " << steps;
            // Connections that the maker had may have ended meanwhile, and the watcher be at work.
            waitUntil([&] { return described() == before; });
            EXPECT_EQ(described(), before) << "step " << steps;
            hasKilled = between.hasKilled() && !HasFailure();
        }
        return steps;
    }

    PrivateXServer mServer;
    ScreenArranger mOthers{mServer.display()};
};

TEST_F(MonitorWatcherTest, RestoresEverythingAfterItsMakerWasKilled)
{
    const auto before = described();
    Maker maker(mServer.display());
    ASSERT_TRUE(waitUntil([&] { return isThere(); }));
    maker.kill();
    EXPECT_TRUE(waitUntil([&] { return described() == before; }));
}

TEST_F(MonitorWatcherTest, RestoresEverythingAfterAMakerOfTwoWasKilled)
{
    mOthers.showOnce(2);
    const auto before = described();
    Maker maker(mServer.display(), FARVIEW_MONITOR_WATCHER, 2);
    ASSERT_TRUE(waitUntil([&] { return areBothThere(); }));
    maker.kill();
    EXPECT_TRUE(waitUntil([&] { return described() == before; }));
}

TEST_F(MonitorWatcherTest, RestoresEverythingAfterDeathAtEachStepOfTwoOutputs)
{
    mOthers.showOnce(2);
    EXPECT_GT(stepsSurvived(2), 30);
}

TEST_F(MonitorWatcherTest, RestoresEverythingAfterDeathAtEachStepOfAnOutput)
{
    EXPECT_GT(stepsSurvived(), 15);
}

TEST_F(MonitorWatcherTest, RestoresEverythingAfterDeathAtEachStepOfANamedMonitor)
{
    mOthers.beWindowManager("Openbox");
    for (std::size_t index = 1; index < mOthers.outputs().size(); ++index)
        mOthers.show(index, 0, 0);
    EXPECT_GT(stepsSurvived(), 12);
}

TEST_F(MonitorWatcherTest, LiftsTheKeysAndButtonsOfAMakerThatWasKilled)
{
    const HoldingMaker maker(mServer.display());
    ASSERT_TRUE(waitUntil([&] { return heldDown(mServer.display()) == "key 38 button 1"; }));
    maker.kill();
    EXPECT_TRUE(waitUntil([&] { return heldDown(mServer.display()).empty(); }));
}

TEST_F(MonitorWatcherTest, LeavesTheKeysOfOthersAloneAfterAnOrdinaryEnd)
{
    const auto connection = connectX(mServer.display().c_str());
    XTestInput(connection.get()).key(38, true);
    xcb_flush(connection.get());
    {
        const MonitorThread maker({.name = "Tablet", .width = 1024, .height = 600},
                                  FARVIEW_MONITOR_WATCHER, [](const auto&) {});
        ASSERT_TRUE(waitUntil([&] { return isThere(); }));
    }
    runLoopFor(std::chrono::milliseconds(200));
    EXPECT_EQ(heldDown(mServer.display()), "key 38");
}

TEST_F(MonitorWatcherTest, LeavesWhatOthersChangedMeanwhile)
{
    Maker maker(mServer.display());
    ASSERT_TRUE(waitUntil([&] { return isThere(); }));
    mOthers.setScreenSize(4864, 1080);
    mOthers.show(2, 2944, 0);
    maker.kill();
    ASSERT_TRUE(waitUntil([&] { return mOthers.area(1) == ScreenArranger::Area{}; }));
    EXPECT_EQ(mOthers.area(2), (ScreenArranger::Area{2944, 0, 1920, 1080}));
    EXPECT_EQ(mOthers.screen(), (ScreenArranger::Area{0, 0, 4864, 1080}));
}

TEST_F(MonitorWatcherTest, TheNextMakerUndoesWhatNobodyWatched)
{
    mOthers.showOnce(2);
    const auto before = described();
    {
        Maker maker(mServer.display(), "/bin/true", 2);
        ASSERT_TRUE(waitUntil([&] { return areBothThere(); }));
    }
    EXPECT_NE(described(), before);
    {
        const MonitorThread next({.name = "Tablet", .width = 800, .height = 600},
                                 FARVIEW_MONITOR_WATCHER, [](const auto&) {});
        EXPECT_TRUE(waitUntil([&] {
            return mOthers.area(1) == ScreenArranger::Area{1920, 0, 800, 600};
        }));
    }
    EXPECT_EQ(described(), before);
}

} // namespace
} // namespace farview
