#include "Platform/Fake/FakeRunLoop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

using farview::Duration;
using farview::FakeRunLoop;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class FakeRunLoopTest : public testing::Test
{
protected:
    auto note(const std::string& word)
    {
        return [this, word] { said.push_back(word); };
    }

    FakeRunLoop loop;
    std::shared_ptr<int> target = std::make_shared<int>();
    std::vector<std::string> said;
};

TEST_F(FakeRunLoopTest, FiresInOrderOfSchedulingWhatIsDueTogether)
{
    loop.performAfterDelay(Duration(1), target, note("first"));
    const auto timer = loop.scheduledTimer(Duration(1), false, target, note("second"));
    loop.run(Duration(1), target, note("third"));
    loop.advance(Duration(1));
    EXPECT_THAT(said, ElementsAre("first", "second", "third"));
    EXPECT_FALSE(timer->isValid());
}

TEST_F(FakeRunLoopTest, ShowsEachHandlerItsOwnTime)
{
    std::vector<double> times;
    const auto noteTime = [&] { times.push_back(loop.now().count()); };
    loop.performAfterDelay(Duration(1), target, noteTime);
    loop.performAfterDelay(Duration(4), target, noteTime);
    loop.advance(Duration(10));
    EXPECT_THAT(times, ElementsAre(1.0, 4.0));
    EXPECT_EQ(loop.now(), Duration(10));
}

TEST_F(FakeRunLoopTest, KeepsTheTargetAliveDuringTheCall)
{
    const std::weak_ptr<int> watched = target;
    bool alive = false;
    loop.performAfterDelay(Duration(0), target, [&] {
        target.reset();
        alive = !watched.expired();
    });
    loop.runUntilIdle();
    EXPECT_TRUE(alive);
    EXPECT_TRUE(watched.expired());
}

TEST_F(FakeRunLoopTest, AStoppedWaitQueuesBehindWhatIsDue)
{
    const auto wait = loop.run(Duration(5), target, note("wait"));
    loop.performAfterDelay(Duration(0), target, note("before"));
    wait->stop();
    loop.performAfterDelay(Duration(0), target, note("after"));
    loop.runUntilIdle();
    EXPECT_THAT(said, ElementsAre("before", "wait", "after"));
}

TEST_F(FakeRunLoopTest, ATurnLeavesWhatItSchedulesToTheNext)
{
    loop.performAfterDelay(Duration(0), target, [this] {
        said.push_back("one");
        loop.performAfterDelay(Duration(0), target, note("two"));
    });
    EXPECT_TRUE(loop.turn());
    EXPECT_THAT(said, ElementsAre("one"));
    EXPECT_TRUE(loop.turn());
    EXPECT_THAT(said, ElementsAre("one", "two"));
    EXPECT_FALSE(loop.turn());
}

TEST_F(FakeRunLoopTest, RefusesANestedLoop)
{
    loop.performAfterDelay(Duration(0), target, [this] { loop.advance(Duration(1)); });
    EXPECT_THROW(loop.runUntilIdle(), std::logic_error);
    EXPECT_NO_THROW(loop.runUntilIdle());
}

TEST_F(FakeRunLoopTest, NoticesAStormThatNeverEnds)
{
    std::function<void()> again = [&] { loop.performAfterDelay(Duration(0), target, again); };
    again();
    EXPECT_THROW(loop.runUntilIdle(), std::logic_error);
}

TEST_F(FakeRunLoopTest, TimersNoticeNeitherSuspensionNorTheWallClock)
{
    loop.performAfterDelay(Duration(15), target, note("due"));
    loop.advance(Duration(5));
    loop.suspend(Duration(3600));
    loop.jumpWallClock(Duration(-600));
    loop.runUntilIdle();
    EXPECT_THAT(said, IsEmpty());
    EXPECT_EQ(loop.wallClock(), Duration(3005));
    loop.advance(Duration(10));
    EXPECT_THAT(said, ElementsAre("due"));
}

TEST(FakeRunLoopHandles, AreHarmlessWhenTheLoopIsGone)
{
    auto loop = std::make_unique<FakeRunLoop>();
    const auto target = std::make_shared<int>();
    const auto timer = loop->scheduledTimer(Duration(1), true, target, [] {});
    const auto wait = loop->run(Duration(1), target, [] {});
    loop.reset();
    timer->invalidate();
    wait->stop();
    EXPECT_FALSE(timer->isValid());
}

} // namespace
