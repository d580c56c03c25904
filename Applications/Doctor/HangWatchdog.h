#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace farview
{

/// Ends the process when the main thread hangs, in a folder on a dead network for example: after
/// `limit` calls `conclude` on a thread of its own, and ends with what that returns. Does nothing
/// any more once it is gone.
class HangWatchdog
{
public:
    HangWatchdog(std::chrono::milliseconds limit, std::function<int()> conclude);
    ~HangWatchdog();
    HangWatchdog(const HangWatchdog&) = delete;
    HangWatchdog& operator=(const HangWatchdog&) = delete;

private:
    void watch();

    std::chrono::milliseconds mLimit;
    std::function<int()> mConclude;
    std::mutex mMutex;
    std::condition_variable mChanged;
    bool mIsOver = false;
    std::thread mThread;
};

} // namespace farview
