#include "Platform/Desktop/Discovery/ResolveQueue.h"
#include "Tests/Discovery/ScriptedSource.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace farview
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class ResolveQueues : public testing::Test
{
protected:
    Subscription add(const std::string& name, bool isUrgent = true)
    {
        ResolveQueue::Job job;
        job.service.name = name;
        job.isUrgent = isUrgent;
        job.answer = [this, name](const ResolveAnswer&) { mAnswered.push_back(name); };
        return mQueue->resolve(std::move(job));
    }
    std::vector<Subscription> fill()
    {
        std::vector<Subscription> handles;
        for (std::size_t index = 0; index < ResolveQueue::limit; ++index)
            handles.push_back(add("filler"));
        return handles;
    }

    std::shared_ptr<ScriptedSource> mSource = std::make_shared<ScriptedSource>();
    std::shared_ptr<ResolveQueue> mQueue = std::make_shared<ResolveQueue>(mSource);
    std::vector<std::string> mAnswered;
};

TEST_F(ResolveQueues, NoMoreRunThanTheSourceCanBearAndUrgentOnesGoFirst)
{
    const auto fillers = fill();
    const auto other = add("other", false);
    const auto urgent = add("urgent", true);
    EXPECT_EQ(mSource->resolves.size(), ResolveQueue::limit);
    mSource->answer(ResolvedSighting{});
    EXPECT_EQ(mSource->resolves.back().service.name, "urgent");
    mSource->answer(ResolvedSighting{});
    EXPECT_EQ(mSource->resolves.back().service.name, "other");
    EXPECT_THAT(mAnswered, ElementsAre("filler", "filler"));
}

TEST_F(ResolveQueues, AHandleThatEndsMakesRoomAndIsNotAnswered)
{
    auto fillers = fill();
    auto waiting = add("waiting");
    auto next = add("next");
    waiting.end();
    fillers.pop_back();
    EXPECT_EQ(mSource->resolves.size(), ResolveQueue::limit);
    EXPECT_EQ(mSource->resolves.back().service.name, "next");
    EXPECT_THAT(mAnswered, IsEmpty());
}

TEST_F(ResolveQueues, ABusySourceIsAskedAgainAfterAPause)
{
    const auto handle = add("one");
    mSource->answer(ResolveFailure::busy);
    EXPECT_THAT(mSource->resolves, IsEmpty());
    ASSERT_TRUE(waitUntil([&] { return mSource->resolveCount == 2; }));
    EXPECT_THAT(mAnswered, IsEmpty());
    mSource->answer(ResolvedSighting{});
    EXPECT_THAT(mAnswered, ElementsAre("one"));
}

TEST_F(ResolveQueues, TheQueueMayGoWhileResolvesRun)
{
    const auto fillers = fill();
    const auto waiting = add("waiting");
    mQueue.reset();
    EXPECT_THAT(mAnswered, IsEmpty());
}

} // namespace
} // namespace farview
