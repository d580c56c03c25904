#include "Platform/Desktop/QtRunLoop.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QTimer>

#include <atomic>
#include <ctime>
#include <limits>
#include <memory>
#include <thread>

namespace farview
{
namespace
{

// What every run loop promises is in the contract; here is what only the real one can get wrong.

const auto target = std::make_shared<int>(0);

TEST(QtRunLoop, FollowsTheClockThatStandsStillDuringASuspension)
{
    const QtRunLoop loop;
    timespec monotonic{};
    ::clock_gettime(CLOCK_MONOTONIC, &monotonic);
    const double seconds = static_cast<double>(monotonic.tv_sec) + monotonic.tv_nsec / 1e9;
    EXPECT_NEAR(loop.now().count(), seconds, 0.5);
}

TEST(QtRunLoop, NothingFiresAfterItHasGone)
{
    int fired = 0;
    auto loop = std::make_unique<QtRunLoop>();
    const auto timer = loop->scheduledTimer(Duration{0.01}, true, target, [&] { ++fired; });
    const auto wait = loop->run(Duration{0.01}, target, [&] { ++fired; });
    loop->performAfterDelay(Duration::zero(), target, [&] { ++fired; });
    loop.reset();
    wait->stop();
    runLoopFor(std::chrono::milliseconds(60));
    timer->invalidate();
    EXPECT_EQ(fired, 0);
}

TEST(QtRunLoop, AnIntervalThatIsNoNumberOrBeyondCountingIsSurvived)
{
    int fired = 0;
    QtRunLoop loop;
    const auto count = [&] { ++fired; };
    loop.scheduledTimer(Duration{1e12}, false, target, count);
    loop.scheduledTimer(Duration{std::numeric_limits<double>::infinity()}, false, target, count);
    runLoopFor(std::chrono::milliseconds(30));
    EXPECT_EQ(fired, 0);
    loop.scheduledTimer(Duration{std::numeric_limits<double>::quiet_NaN()}, false, target, count);
    EXPECT_TRUE(waitUntil([&] { return fired == 1; }));
}

TEST(QtRunLoop, ARepeatingTimerWithoutAnIntervalLeavesTheLoopRoom)
{
    int fired = 0;
    QtRunLoop loop;
    const auto timer = loop.scheduledTimer(Duration::zero(), true, target, [&] { ++fired; });
    runLoopFor(std::chrono::milliseconds(50));
    timer->invalidate();
    EXPECT_GT(fired, 0);
    EXPECT_LE(fired, 200);
}

TEST(QtRunLoop, ForgetsWhatHasEnded)
{
    QtRunLoop loop;
    loop.performAfterDelay(Duration::zero(), target, [] {});
    loop.scheduledTimer(Duration::zero(), false, target, [] {});
    loop.run(Duration{60}, target, [] {})->stop();
    loop.scheduledTimer(Duration{60}, true, target, [] {})->invalidate();
    EXPECT_EQ(loop.pendingCount(), 3u);
    EXPECT_TRUE(waitUntil([&] { return loop.pendingCount() == 0; }));
}

TEST(QtRunLoop, AHandlerMayReleaseWhatItBelongsTo)
{
    QtRunLoop loop;
    auto owner = std::make_shared<int>(0);
    int fired = 0;
    loop.scheduledTimer(Duration{0.001}, true, owner, [&] {
        ++fired;
        owner.reset();
    });
    ASSERT_TRUE(waitUntil([&] { return loop.pendingCount() == 0; }));
    EXPECT_EQ(fired, 1);
}

/// Counts how often the loop went to sleep, for as long as it lives.
struct Sleeps : QObject {
    std::atomic<int> count = 0;

    Sleeps()
    {
        connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
                [this] { ++count; });
    }
};

TEST(QtRunLoop, WakesForAPostOfAnotherThread)
{
    QtRunLoop loop;
    bool fired = false;
    bool overslept = false;
    QTimer guard;
    guard.callOnTimeout([&] { overslept = true; });
    guard.start(std::chrono::seconds(20));
    Sleeps sleeps;
    std::jthread poster([&] {
        while (sleeps.count == 0)
            std::this_thread::yield();
        loop.post(target, [&] { fired = true; });
    });
    while (!fired && !overslept)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_TRUE(fired);
    EXPECT_FALSE(overslept);
}

TEST(QtRunLoop, SleepsWhileNothingIsPosted)
{
    QtRunLoop loop;
    bool over = false;
    runLoopFor(std::chrono::milliseconds(1)); // what others left behind
    QTimer::singleShot(300, [&] { over = true; });
    Sleeps sleeps;
    while (!over)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_LE(sleeps.count, 3);
}

} // namespace
} // namespace farview
