#include "Tests/Support/WaitUntil.h"

#include <QEventLoop>
#include <QTimer>

using Clock = std::chrono::steady_clock;

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit)
{
    const auto end = Clock::now() + limit;
    QEventLoop loop;
    // Something that is not an event of the loop (a file, another process) is looked at again soon.
    QTimer tick;
    tick.start(5);
    while (!condition()) {
        if (Clock::now() >= end)
            return false;
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

void runLoopFor(std::chrono::milliseconds span)
{
    const auto end = Clock::now() + span;
    waitUntil([end] { return Clock::now() >= end; }, span * 2);
}
