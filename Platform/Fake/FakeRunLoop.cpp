#include "Platform/Fake/FakeRunLoop.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <mutex>
#include <stdexcept>
#include <utility>
#include <vector>

namespace farview
{
namespace
{

constexpr Duration shortestInterval{0.0001};
constexpr int endlessRounds = 100000;

} // namespace

/// One timer, perform or wait, and what callers hold of it: owned by the queue while it is pending,
/// harmless once the loop is gone.
struct FakeRunLoop::Entry final : Timer, Wait, std::enable_shared_from_this<Entry> {
    std::weak_ptr<State> state;
    std::weak_ptr<void> target;
    Action action;
    std::pair<Duration, std::uint64_t> place; ///< due time, then order of scheduling
    Duration interval{0};                     ///< of a repeating timer
    bool isWait = false;
    bool isPending = true;
    bool isStopped = false;

    void invalidate() override;
    bool isValid() const override { return isPending && !state.expired(); }
    void stop() override;
};

struct FakeRunLoop::State final : std::enable_shared_from_this<State> {
    std::map<std::pair<Duration, std::uint64_t>, std::shared_ptr<Entry>> queue;
    std::uint64_t scheduled = 0;
    Duration now{0};
    Duration wallClockDifference{0};
    bool firing = false;
    std::mutex postsLock;
    std::vector<std::pair<std::weak_ptr<void>, Action>> posts; ///< of any thread, not queued yet

    void put(const std::shared_ptr<Entry>& entry, Duration due)
    {
        entry->place = {due, scheduled++};
        queue[entry->place] = entry;
    }
    void take(const std::shared_ptr<Entry>& entry)
    {
        queue.erase(entry->place);
        entry->isPending = false;
    }
    std::shared_ptr<Entry> schedule(Duration delay, std::weak_ptr<void> target, Action action);
    void queuePosts();
    bool isDue(Duration time)
    {
        queuePosts();
        return !queue.empty() && queue.begin()->first.first <= time;
    }
};

void FakeRunLoop::Entry::invalidate()
{
    if (const auto alive = state.lock(); alive && isPending)
        alive->take(shared_from_this());
}

void FakeRunLoop::Entry::stop()
{
    const auto alive = state.lock();
    // A second stop must not push it behind what was queued since the first.
    if (!alive || !isPending || std::exchange(isStopped, true))
        return;
    const auto self = shared_from_this();
    alive->queue.erase(place);
    alive->put(self, alive->now);
}

FakeRunLoop::FakeRunLoop() : mState(std::make_shared<State>()) {}

FakeRunLoop::~FakeRunLoop()
{
    // A handler's last reference may be to something that schedules or invalidates while it goes.
    while (pendingCount() > 0) {
        mState->queuePosts();
        mState->take(std::shared_ptr<Entry>(mState->queue.begin()->second));
    }
}

std::shared_ptr<FakeRunLoop::Entry>
FakeRunLoop::State::schedule(Duration delay, std::weak_ptr<void> target, Action action)
{
    auto entry = std::make_shared<Entry>();
    entry->state = weak_from_this();
    entry->target = std::move(target);
    entry->action = std::move(action);
    put(entry, now + std::max(delay, Duration::zero()));
    return entry;
}

void FakeRunLoop::State::queuePosts()
{
    decltype(posts) arrived;
    {
        const std::lock_guard lock(postsLock);
        arrived.swap(posts);
    }
    for (auto& [target, action] : arrived)
        schedule(Duration::zero(), std::move(target), std::move(action));
}

std::shared_ptr<Timer> FakeRunLoop::scheduledTimer(Duration interval, bool repeats,
                                                   std::weak_ptr<void> target, Action action)
{
    const Duration span = std::max(interval, shortestInterval);
    auto entry = mState->schedule(span, std::move(target), std::move(action));
    if (repeats)
        entry->interval = span;
    return entry;
}

void FakeRunLoop::performAfterDelay(Duration delay, std::weak_ptr<void> target, Action action)
{
    mState->schedule(delay, std::move(target), std::move(action));
}

std::shared_ptr<RunLoop::Wait> FakeRunLoop::run(Duration limit, std::weak_ptr<void> target,
                                                Action then)
{
    auto entry = mState->schedule(limit, std::move(target), std::move(then));
    entry->isWait = true;
    return entry;
}

void FakeRunLoop::post(std::weak_ptr<void> target, Action action)
{
    const std::lock_guard lock(mState->postsLock);
    mState->posts.emplace_back(std::move(target), std::move(action));
}

Duration FakeRunLoop::now() const { return mState->now; }

void FakeRunLoop::fireNext()
{
    const auto entry = mState->queue.begin()->second;
    const auto due = entry->place.first;
    mState->now = std::max(mState->now, due);
    mState->queue.erase(entry->place);
    const auto target = entry->target.lock();
    const bool again = target && entry->interval > Duration::zero();
    if (again)
        mState->put(entry, due + entry->interval);
    else
        entry->isPending = false;
    if (target)
        entry->action();
}

namespace
{

/// Marks the loop as firing for as long as it lives, and refuses to do so twice.
class Firing
{
public:
    explicit Firing(bool& flag) : mFlag(flag)
    {
        if (mFlag)
            throw std::logic_error("a handler runs the run loop: nested event loop");
        mFlag = true;
    }
    ~Firing() { mFlag = false; }
    Firing(const Firing&) = delete;
    Firing& operator=(const Firing&) = delete;

private:
    bool& mFlag;
};

} // namespace

void FakeRunLoop::fireDueUntil(Duration time)
{
    const auto state = mState;
    const Firing firing(state->firing);
    int atSameTime = 0;
    while (state->isDue(time)) {
        const auto before = state->now;
        fireNext();
        atSameTime = state->now > before ? 0 : atSameTime + 1;
        if (atSameTime > endlessRounds)
            throw std::logic_error("the run loop never becomes idle");
    }
}

void FakeRunLoop::advance(Duration span)
{
    const Duration end = mState->now + span;
    fireDueUntil(end);
    mState->now = std::max(mState->now, end);
}

void FakeRunLoop::runUntilIdle() { fireDueUntil(mState->now); }

bool FakeRunLoop::turn()
{
    const auto state = mState;
    const Firing firing(state->firing);
    state->queuePosts();
    const auto firstOfNextTurn = state->scheduled;
    bool fired = false;
    while (!state->queue.empty()) {
        const auto& [due, order] = state->queue.begin()->first;
        if (due > state->now || order >= firstOfNextTurn)
            break;
        fireNext();
        fired = true;
    }
    return fired;
}

void FakeRunLoop::suspend(Duration span) { mState->wallClockDifference += span; }
void FakeRunLoop::jumpWallClock(Duration difference) { mState->wallClockDifference += difference; }
Duration FakeRunLoop::wallClock() const { return mState->now + mState->wallClockDifference; }

std::size_t FakeRunLoop::pendingCount() const
{
    const std::lock_guard lock(mState->postsLock);
    return mState->queue.size() + mState->posts.size();
}

std::size_t FakeRunLoop::waitCount() const
{
    return static_cast<std::size_t>(
        std::count_if(mState->queue.begin(), mState->queue.end(),
                      [](const auto& each) { return each.second->isWait; }));
}

} // namespace farview
