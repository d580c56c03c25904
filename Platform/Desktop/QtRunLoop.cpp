#include "Platform/Desktop/QtRunLoop.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <utility>

namespace farview
{

/// What the loop owns. Entries take themselves out when they end, also after the loop has gone.
class QtRunLoop::Pending
{
public:
    void add(std::shared_ptr<void> entry) { mEntries.insert(std::move(entry)); }
    void remove(const std::shared_ptr<void>& entry) { mEntries.erase(entry); }
    std::size_t size() const { return mEntries.size(); }

private:
    std::set<std::shared_ptr<void>> mEntries;
};

namespace
{

/// Rounded up, so that nothing fires early; an interval beyond what Qt counts is the longest one.
int milliseconds(Duration interval)
{
    constexpr double longest = std::numeric_limits<int>::max();
    const double wanted = std::ceil(interval.count() * 1000.0);
    return wanted > 0 ? static_cast<int>(std::min(wanted, longest)) : 0;
}

/// One timer, or one wait (a timer that can be brought forward). Owned by the loop while it is
/// valid; keeps itself alive through its own firing.
class QtTimer final : public Timer,
                      public RunLoop::Wait,
                      public std::enable_shared_from_this<QtTimer>
{
public:
    QtTimer(std::weak_ptr<QtRunLoop::Pending> pending, std::weak_ptr<void> target,
            RunLoop::Action action)
        : mPending(std::move(pending)), mTarget(std::move(target)), mAction(std::move(action))
    {
        mTimer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&mTimer, &QTimer::timeout, &mTimer, [this] { fire(); });
    }

    void start(Duration interval, bool repeats)
    {
        mTimer.setSingleShot(!repeats);
        // A repeating timer without an interval would keep the loop from ever resting.
        mTimer.start(repeats ? std::max(milliseconds(interval), 1) : milliseconds(interval));
    }

    void invalidate() override
    {
        const auto self = shared_from_this();
        mTimer.stop();
        mValid = false;
        if (const auto pending = mPending.lock())
            pending->remove(self);
    }

    bool isValid() const override { return mValid; }

    void stop() override
    {
        if (std::exchange(mStopped, true) || !mValid)
            return;
        mTimer.start(0);
    }

private:
    void fire()
    {
        const auto self = shared_from_this();
        const auto target = mPending.expired() ? nullptr : mTarget.lock();
        if (mTimer.isSingleShot() || !target)
            invalidate();
        if (target)
            mAction();
    }

    QTimer mTimer;
    std::weak_ptr<QtRunLoop::Pending> mPending;
    std::weak_ptr<void> mTarget;
    RunLoop::Action mAction;
    bool mValid = true;
    bool mStopped = false;
};

std::shared_ptr<QtTimer> startTimer(const std::shared_ptr<QtRunLoop::Pending>& pending,
                                    Duration interval, bool repeats, std::weak_ptr<void> target,
                                    RunLoop::Action action)
{
    auto timer = std::make_shared<QtTimer>(pending, std::move(target), std::move(action));
    pending->add(timer);
    timer->start(interval, repeats);
    return timer;
}

} // namespace

QtRunLoop::QtRunLoop() : mPending(std::make_shared<Pending>()) {}

QtRunLoop::~QtRunLoop() = default;

std::shared_ptr<Timer> QtRunLoop::scheduledTimer(Duration interval, bool repeats,
                                                 std::weak_ptr<void> target, Action action)
{
    return startTimer(mPending, interval, repeats, std::move(target), std::move(action));
}

void QtRunLoop::performAfterDelay(Duration delay, std::weak_ptr<void> target, Action action)
{
    startTimer(mPending, delay, false, std::move(target), std::move(action));
}

std::shared_ptr<RunLoop::Wait> QtRunLoop::run(Duration limit, std::weak_ptr<void> target,
                                              Action then)
{
    return startTimer(mPending, limit, false, std::move(target), std::move(then));
}

void QtRunLoop::post(std::weak_ptr<void> target, Action action)
{
    mInbox.add(std::move(target), std::move(action));
}

void QtRunLoop::Inbox::add(std::weak_ptr<void> target, Action action)
{
    {
        const std::lock_guard lock(mMutex);
        mPosted.emplace_back(std::move(target), std::move(action));
    }
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

/// Each event stands for one post.
void QtRunLoop::Inbox::customEvent(QEvent*)
{
    std::unique_lock lock(mMutex);
    const auto [target, action] = std::move(mPosted.front());
    mPosted.pop_front();
    lock.unlock();
    if (const auto alive = target.lock())
        action();
}

Duration QtRunLoop::now() const { return std::chrono::steady_clock::now().time_since_epoch(); }

std::size_t QtRunLoop::pendingCount() const { return mPending->size(); }

} // namespace farview
