#pragma once

#include "Platform/RunLoop.h"

#include <QObject>

#include <deque>
#include <memory>
#include <mutex>
#include <utility>

namespace farview
{

/// The run loop on Qt's event loop. The application object must exist before the first timer.
/// Main thread only, but for `post`.
///
/// Time is the system's monotonic clock: it stands still while the computer is suspended and does
/// not follow changes of the wall clock. What is still pending when the loop object goes never
/// fires.
class QtRunLoop final : public RunLoop
{
public:
    QtRunLoop();
    ~QtRunLoop() override;

    std::shared_ptr<Timer> scheduledTimer(Duration interval, bool repeats,
                                          std::weak_ptr<void> target, Action action) override;
    void performAfterDelay(Duration delay, std::weak_ptr<void> target, Action action) override;
    std::shared_ptr<Wait> run(Duration limit, std::weak_ptr<void> target, Action then) override;
    void post(std::weak_ptr<void> target, Action action) override;
    Duration now() const override;

    /// What the loop still owns: timers, delayed performs and waits.
    std::size_t pendingCount() const;

    class Pending;

private:
    /// What was posted, handed over under a lock of our own: the thread sanitizer does not see
    /// those of Qt.
    class Inbox final : public QObject
    {
    public:
        void add(std::weak_ptr<void> target, Action action);

    private:
        void customEvent(QEvent*) override;

        std::mutex mMutex;
        std::deque<std::pair<std::weak_ptr<void>, Action>> mPosted;
    };

    std::shared_ptr<Pending> mPending;
    Inbox mInbox;
};

} // namespace farview
