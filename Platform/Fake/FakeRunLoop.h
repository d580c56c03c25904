#pragma once

#include "Platform/RunLoop.h"

#include <cstddef>

namespace farview
{

/// A run loop whose clock stands still until a test moves it.
///
/// What is scheduled fires in the order of its due time; what is due at the same moment in the
/// order of scheduling. Something scheduled by a handler that is running fires after everything
/// that was due already.
class FakeRunLoop final : public RunLoop
{
public:
    FakeRunLoop();
    ~FakeRunLoop() override;

    std::shared_ptr<Timer> scheduledTimer(Duration interval, bool repeats,
                                          std::weak_ptr<void> target, Action action) override;
    void performAfterDelay(Duration delay, std::weak_ptr<void> target, Action action) override;
    std::shared_ptr<Wait> run(Duration limit, std::weak_ptr<void> target, Action then) override;
    /// Queued like a perform without delay, once the clock is moved.
    void post(std::weak_ptr<void> target, Action action) override;
    Duration now() const override;

    /// Moves the clock on and fires everything that falls due on the way, each at its own time.
    /// Throws std::logic_error when called from a handler: that would be a nested loop.
    void advance(Duration span);
    /// Fires what is due now, and what that schedules for now, until nothing is left. Throws
    /// std::logic_error when it never ends.
    void runUntilIdle();
    /// One turn: fires what is due now and nothing that is scheduled meanwhile. False when nothing
    /// was due.
    bool turn();

    /// The computer sleeps for that long: the wall clock goes on, the timers' clock does not.
    void suspend(Duration span);
    /// Someone sets the wall clock forward or back. Timers do not notice.
    void jumpWallClock(Duration difference);
    /// Seconds of the wall clock since the loop was made.
    Duration wallClock() const;

    /// How many timers, performs, posts and waits have not come to their end yet.
    std::size_t pendingCount() const;
    /// How many waits are under way.
    std::size_t waitCount() const;

private:
    struct Entry;
    struct State;

    void fireNext();
    void fireDueUntil(Duration time);

    std::shared_ptr<State> mState;
};

} // namespace farview
