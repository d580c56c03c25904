#include "Platform/Desktop/Discovery/EventBatch.h"

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

constexpr int quietTime = 30;
constexpr int longestTime = 250;

void setUp(QTimer& timer, int interval)
{
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    timer.setInterval(interval);
}

} // namespace

EventBatch::EventBatch(Deliver deliver) : mDeliver(std::move(deliver))
{
    setUp(mQuiet, quietTime);
    setUp(mLimit, longestTime);
    connect(&mQuiet, &QTimer::timeout, this, &EventBatch::flush);
    connect(&mLimit, &QTimer::timeout, this, &EventBatch::flush);
}

void EventBatch::addFound(std::shared_ptr<NetService> service) { add(true, std::move(service)); }

void EventBatch::addRemoved(std::shared_ptr<NetService> service)
{
    if (!takeBack(service))
        add(false, std::move(service));
}

void EventBatch::add(bool found, std::shared_ptr<NetService> service)
{
    if (mRuns.empty() || mRuns.back().found != found)
        mRuns.push_back({found, {}});
    mRuns.back().services.push_back(std::move(service));
    mQuiet.start();
    if (!mLimit.isActive())
        mLimit.start();
}

bool EventBatch::takeBack(const std::shared_ptr<NetService>& service)
{
    return std::any_of(mRuns.begin(), mRuns.end(), [&](Run& run) {
        return run.found && std::erase(run.services, service) > 0;
    });
}

void EventBatch::clear()
{
    ++mGeneration;
    mRuns.clear();
    mQuiet.stop();
    mLimit.stop();
}

void EventBatch::flush()
{
    mQuiet.stop();
    mLimit.stop();
    const unsigned generation = mGeneration;
    const auto runs = std::exchange(mRuns, {});
    for (const auto& run : runs) {
        if (generation == mGeneration && !run.services.empty())
            mDeliver(run.found, run.services);
    }
}

} // namespace farview
