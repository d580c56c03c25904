#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace farview
{

/// A span of time as the run loop counts it: it does not advance while the computer is suspended,
/// and setting the wall clock does not change it.
using Duration = std::chrono::duration<double>;

/// A scheduled timer. The run loop owns it until it fired (one-shot) or was invalidated; whoever
/// keeps a reference keeps a weak one.
class Timer
{
public:
    virtual ~Timer() = default;

    /// Ends the timer; it never fires again. May be called from inside its own firing, and again.
    virtual void invalidate() = 0;
    virtual bool isValid() const = 0;
};

/// The main thread's stream of events. Everything happens there; only `post` may be called from
/// elsewhere.
///
/// Timers and delayed performs are bound weakly to a target: once the target is gone they fire into
/// nothing. There are no nested loops: a wait returns at once and reports its end by a call.
class RunLoop
{
public:
    using Action = std::function<void()>;

    /// A wait that is under way, see `run`.
    class Wait
    {
    public:
        virtual ~Wait() = default;
        /// Ends the wait; its `then` is called once, on a later turn. Does nothing after the end.
        virtual void stop() = 0;
    };

    virtual ~RunLoop() = default;

    /// Fires `action` after `interval` (and then every `interval`, when it repeats) while `target`
    /// lives.
    virtual std::shared_ptr<Timer> scheduledTimer(Duration interval, bool repeats,
                                                  std::weak_ptr<void> target, Action action) = 0;

    /// Calls `action` once, after `delay`, if `target` lives then. Zero means: on the next turn,
    /// after what is queued already. Cannot be taken back.
    virtual void performAfterDelay(Duration delay, std::weak_ptr<void> target, Action action) = 0;

    /// Begins a wait and returns at once. `then` is called exactly once, on a later turn: after
    /// `stop()` or after `limit`, whichever comes first; never when `target` is gone by then. The
    /// loop owns the wait.
    virtual std::shared_ptr<Wait> run(Duration limit, std::weak_ptr<void> target, Action then) = 0;

    /// Calls `action` once on the main thread, on a later turn, if `target` lives then; a loop that
    /// sleeps wakes. May be called from any thread while the loop exists, and is the only way from
    /// another thread to the main one. What one thread posts comes in its order. The action is
    /// destroyed on the main thread. What is still queued when the loop goes never fires.
    virtual void post(std::weak_ptr<void> target, Action action) = 0;

    /// The time since some fixed moment, on the clock that the timers follow.
    virtual Duration now() const = 0;
};

} // namespace farview
