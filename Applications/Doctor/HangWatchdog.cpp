#include "Applications/Doctor/HangWatchdog.h"

#include <unistd.h>

#include <utility>

namespace farview
{

HangWatchdog::HangWatchdog(std::chrono::milliseconds limit, std::function<int()> conclude)
    : mLimit(limit), mConclude(std::move(conclude)), mThread([this] { watch(); })
{
}

HangWatchdog::~HangWatchdog()
{
    {
        const std::lock_guard lock(mMutex);
        mIsOver = true;
    }
    mChanged.notify_one();
    mThread.join();
}

void HangWatchdog::watch()
{
    std::unique_lock lock(mMutex);
    if (mChanged.wait_for(lock, mLimit, [this] { return mIsOver; }))
        return;
    // The main thread cannot be asked any more, so nothing is cleaned up.
    ::_exit(mConclude());
}

} // namespace farview
