#include "Platform/Desktop/Discovery/ResolveQueue.h"

#include <utility>

namespace farview
{
namespace
{

constexpr int pauseWhenBusy = 250;

} // namespace

ResolveQueue::ResolveQueue(std::shared_ptr<DiscoverySource> source) : mSource(std::move(source))
{
    mPause.setSingleShot(true);
    mPause.setInterval(pauseWhenBusy);
    connect(&mPause, &QTimer::timeout, this, &ResolveQueue::startNext);
}

Subscription ResolveQueue::resolve(Job job)
{
    const Number number = ++mLastNumber;
    const bool isUrgent = job.isUrgent;
    mEntries.emplace(number, Entry{std::move(job), {}, false});
    wait(number, isUrgent);
    startNext();
    return Subscription([weak = weak_from_this(), number] {
        if (const auto queue = weak.lock())
            queue->drop(number);
    });
}

void ResolveQueue::wait(Number number, bool isUrgent)
{
    (isUrgent ? mUrgent : mOthers).push_back(number);
}

void ResolveQueue::startNext()
{
    while (mRunning < limit && !mPause.isActive() && !(mUrgent.empty() && mOthers.empty())) {
        auto& line = mUrgent.empty() ? mOthers : mUrgent;
        const Number number = line.front();
        line.pop_front();
        // Who gave up waiting is still in the line.
        const auto found = mEntries.find(number);
        if (found != mEntries.end())
            start(number, found->second);
    }
}

void ResolveQueue::start(Number number, Entry& entry)
{
    ++mRunning;
    entry.isRunning = true;
    const auto& job = entry.job;
    entry.running =
        mSource->resolve(job.service, job.sighting, job.addressProtocol,
                         [this, number](const ResolveAnswer& answer) { finish(number, answer); });
}

void ResolveQueue::finish(Number number, const ResolveAnswer& answer)
{
    const auto* failure = std::get_if<ResolveFailure>(&answer);
    if (failure && *failure == ResolveFailure::busy) {
        postpone(number);
        return;
    }
    const auto self = shared_from_this();
    const auto tell = mEntries.at(number).job.answer;
    drop(number);
    tell(answer);
}

void ResolveQueue::postpone(Number number)
{
    auto& entry = mEntries.at(number);
    entry.isRunning = false;
    entry.running.end();
    --mRunning;
    wait(number, entry.job.isUrgent);
    mPause.start();
}

void ResolveQueue::drop(Number number)
{
    const auto node = mEntries.extract(number);
    if (node.empty() || !node.mapped().isRunning)
        return;
    --mRunning;
    startNext();
}

} // namespace farview
