#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Fake/FakeRunLoop.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace farview
{
namespace
{

/// The loop whose clock the test moves.
struct FakeBench {
    FakeRunLoop loop;

    void pass(Duration span) { loop.advance(span); }
};

/// The real loop, in real time.
struct QtBench {
    QtRunLoop loop;

    void pass(Duration span)
    {
        const Duration end = loop.now() + span;
        waitUntil([&] { return loop.now() >= end; });
        // What falls due at the very end still has its turn.
        runLoopFor(std::chrono::milliseconds(5));
    }
};

template <typename Bench> class RunLoopContract : public testing::Test
{
protected:
    RunLoop& loop() { return mBench.loop; }
    void pass(Duration span) { mBench.pass(span); }
    RunLoop::Action note(std::string text)
    {
        return [this, text] { mNotes.push_back(text); };
    }

    Bench mBench;
    std::vector<std::string> mNotes;
    std::shared_ptr<int> mTarget = std::make_shared<int>(0);
};

using Benches = testing::Types<FakeBench, QtBench>;
TYPED_TEST_SUITE(RunLoopContract, Benches);

constexpr Duration tick{0.02};
using Notes = std::vector<std::string>;

TYPED_TEST(RunLoopContract, AOneShotTimerFiresOnceAfterItsInterval)
{
    const auto start = this->loop().now();
    Duration fired{};
    int count = 0;
    const auto timer = this->loop().scheduledTimer(tick, false, this->mTarget, [&] {
        fired = this->loop().now();
        ++count;
    });
    EXPECT_TRUE(timer->isValid());
    EXPECT_EQ(count, 0);
    this->pass(tick * 4);
    EXPECT_EQ(count, 1);
    EXPECT_GE(fired - start, tick);
    EXPECT_FALSE(timer->isValid());
}

TYPED_TEST(RunLoopContract, AOneShotTimerIsOverBeforeItsActionIsCalled)
{
    std::shared_ptr<Timer> timer;
    bool validInside = true;
    timer = this->loop().scheduledTimer(tick, false, this->mTarget,
                                        [&] { validInside = timer->isValid(); });
    this->pass(tick * 2);
    EXPECT_FALSE(validInside);
}

TYPED_TEST(RunLoopContract, ARepeatingTimerFiresAgainAndAgain)
{
    const auto timer = this->loop().scheduledTimer(tick, true, this->mTarget, this->note("tick"));
    this->pass(tick * 5);
    EXPECT_GE(this->mNotes.size(), 3u);
    EXPECT_TRUE(timer->isValid());
    timer->invalidate();
}

TYPED_TEST(RunLoopContract, AnInvalidatedTimerNeverFires)
{
    const auto timer = this->loop().scheduledTimer(tick, false, this->mTarget, this->note("late"));
    timer->invalidate();
    timer->invalidate();
    EXPECT_FALSE(timer->isValid());
    this->pass(tick * 3);
    EXPECT_EQ(this->mNotes, Notes{});
}

TYPED_TEST(RunLoopContract, ARepeatingTimerCanEndItselfInsideItsFiring)
{
    std::weak_ptr<Timer> timer;
    timer = this->loop().scheduledTimer(tick, true, this->mTarget, [&] {
        this->mNotes.push_back("once");
        timer.lock()->invalidate();
    });
    this->pass(tick * 5);
    EXPECT_EQ(this->mNotes, Notes{"once"});
    EXPECT_TRUE(timer.expired());
}

TYPED_TEST(RunLoopContract, TheLoopKeepsATimerThatNobodyHolds)
{
    std::weak_ptr<Timer> timer =
        this->loop().scheduledTimer(tick, false, this->mTarget, this->note("fired"));
    EXPECT_FALSE(timer.expired());
    this->pass(tick * 3);
    EXPECT_EQ(this->mNotes, Notes{"fired"});
    EXPECT_TRUE(timer.expired());
}

TYPED_TEST(RunLoopContract, NothingFiresForATargetThatHasGone)
{
    this->loop().scheduledTimer(tick, true, this->mTarget, this->note("timer"));
    this->loop().performAfterDelay(tick, this->mTarget, this->note("perform"));
    this->loop().run(tick, this->mTarget, this->note("wait"));
    this->mTarget.reset();
    this->pass(tick * 4);
    EXPECT_EQ(this->mNotes, Notes{});
}

TYPED_TEST(RunLoopContract, PerformsComeInTheOrderOfTheirDelaysAndThenOfTheirMaking)
{
    this->loop().performAfterDelay(tick * 3, this->mTarget, this->note("third"));
    this->loop().performAfterDelay(tick, this->mTarget, this->note("second"));
    this->loop().performAfterDelay(Duration::zero(), this->mTarget, this->note("first a"));
    this->loop().performAfterDelay(Duration::zero(), this->mTarget, this->note("first b"));
    EXPECT_EQ(this->mNotes, Notes{});
    this->pass(tick * 5);
    EXPECT_EQ(this->mNotes, (Notes{"first a", "first b", "second", "third"}));
}

TYPED_TEST(RunLoopContract, APerformWithoutDelayComesAfterWhatIsQueuedAlready)
{
    this->loop().performAfterDelay(Duration::zero(), this->mTarget, [&] {
        this->mNotes.push_back("first");
        this->loop().performAfterDelay(Duration::zero(), this->mTarget, this->note("third"));
    });
    this->loop().performAfterDelay(Duration::zero(), this->mTarget, this->note("second"));
    this->pass(tick);
    EXPECT_EQ(this->mNotes, (Notes{"first", "second", "third"}));
}

TYPED_TEST(RunLoopContract, ANegativeDelayMeansTheNextTurn)
{
    this->loop().performAfterDelay(Duration{-5}, this->mTarget, this->note("now"));
    EXPECT_EQ(this->mNotes, Notes{});
    this->pass(tick);
    EXPECT_EQ(this->mNotes, Notes{"now"});
}

TYPED_TEST(RunLoopContract, AWaitEndsOnceAtItsLimit)
{
    const auto wait = this->loop().run(tick, this->mTarget, this->note("over"));
    EXPECT_EQ(this->mNotes, Notes{});
    this->pass(tick * 3);
    EXPECT_EQ(this->mNotes, Notes{"over"});
    wait->stop();
    this->pass(tick * 2);
    EXPECT_EQ(this->mNotes, Notes{"over"});
}

TYPED_TEST(RunLoopContract, AStoppedWaitEndsOnALaterTurnAndOnce)
{
    const auto wait = this->loop().run(tick * 2, this->mTarget, this->note("over"));
    wait->stop();
    wait->stop();
    EXPECT_EQ(this->mNotes, Notes{});
    this->pass(tick / 2);
    EXPECT_EQ(this->mNotes, Notes{"over"});
    this->pass(tick * 4);
    EXPECT_EQ(this->mNotes, Notes{"over"});
}

TYPED_TEST(RunLoopContract, TheLoopOwnsAWaitThatIsUnderWay)
{
    const std::weak_ptr<RunLoop::Wait> wait =
        this->loop().run(tick * 100, this->mTarget, this->note("over"));
    ASSERT_FALSE(wait.expired());
    wait.lock()->stop();
    this->pass(tick);
    EXPECT_EQ(this->mNotes, Notes{"over"});
    EXPECT_TRUE(wait.expired());
}

TYPED_TEST(RunLoopContract, OneWaitEndsInsideTheOthersWithoutDisturbingThem)
{
    const auto first = this->loop().run(tick * 2, this->mTarget, this->note("first"));
    const auto second = this->loop().run(tick * 4, this->mTarget, this->note("second"));
    first->stop();
    this->pass(tick);
    EXPECT_EQ(this->mNotes, Notes{"first"});
    this->pass(tick * 5);
    EXPECT_EQ(this->mNotes, (Notes{"first", "second"}));
}

TYPED_TEST(RunLoopContract, APostComesOnALaterTurnInTheOrderOfPosting)
{
    this->loop().post(this->mTarget, [&] {
        this->mNotes.push_back("first");
        this->loop().post(this->mTarget, this->note("third"));
    });
    this->loop().post(this->mTarget, this->note("second"));
    EXPECT_EQ(this->mNotes, Notes{});
    this->pass(tick);
    EXPECT_EQ(this->mNotes, (Notes{"first", "second", "third"}));
}

TYPED_TEST(RunLoopContract, ThreadsPostToTheMainThreadEachInItsOrder)
{
    constexpr int posts = 500;
    std::array<std::vector<int>, 4> arrived;
    bool onMainThread = true;
    std::vector<std::jthread> threads;
    for (auto& numbers : arrived) {
        threads.emplace_back([&, main = std::this_thread::get_id()] {
            for (int number = 0; number < posts; ++number) {
                this->loop().post(this->mTarget, [&, main, number] {
                    numbers.push_back(number);
                    onMainThread = onMainThread && std::this_thread::get_id() == main;
                });
            }
        });
    }
    // The loop runs while they post, too.
    for (int rounds = 0; rounds < 3; ++rounds)
        this->pass(tick);
    threads.clear();
    this->pass(tick * 2);
    EXPECT_TRUE(onMainThread);
    for (const auto& numbers : arrived) {
        EXPECT_EQ(numbers.size(), static_cast<std::size_t>(posts));
        EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    }
}

TYPED_TEST(RunLoopContract, APostForATargetThatHasGoneIsDroppedOnTheMainThread)
{
    const auto held = std::make_shared<int>(0);
    std::jthread([&] {
        this->loop().post(this->mTarget, [&, held] { this->mNotes.push_back("late"); });
    }).join();
    this->mTarget.reset();
    EXPECT_EQ(held.use_count(), 2);
    this->pass(tick);
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(this->mNotes, Notes{});
}

TYPED_TEST(RunLoopContract, WhatIsStillPostedWhenTheLoopGoesNeverFires)
{
    const auto held = std::make_shared<int>(0);
    auto bench = std::make_unique<TypeParam>();
    bench->loop.post(this->mTarget, [&, held] { this->mNotes.push_back("late"); });
    bench.reset();
    EXPECT_EQ(held.use_count(), 1);
    this->pass(tick);
    EXPECT_EQ(this->mNotes, Notes{});
}

} // namespace
} // namespace farview
