#include "Platform/Desktop/Discovery/KnownService.h"

#include "Platform/Desktop/Discovery/ServiceNames.h"

#include <QTimer>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

using namespace std::chrono_literals;

constexpr auto freshness = 1s;
constexpr auto pauseBeforeRetry = 250ms;

} // namespace

KnownService::KnownService(ServiceName name, std::shared_ptr<ResolveQueue> queue)
    : mName(std::move(name)), mPrintableName(replacingInvalidUTF8(mName.name)),
      mQueue(std::move(queue))
{
}

std::vector<Sighting> KnownService::sightings() const
{
    std::vector<Sighting> sightings;
    for (const auto& [sighting, state] : mStates)
        sightings.push_back(sighting);
    return sightings;
}

void KnownService::seen(Sighting sighting)
{
    const auto [position, isNew] = mStates.try_emplace(sighting);
    if (isNew)
        resolve(sighting, position->second);
}

bool KnownService::gone(Sighting sighting)
{
    mStates.erase(sighting);
    if (mStates.empty())
        return true;
    collectEndpoints();
    return false;
}

void KnownService::leave()
{
    mIsPresent = false;
    mStates.clear();
    tellObservers([](auto& observer) {
        if (observer.isWaitingForResolve())
            observer.serviceCannotBeResolved("the service has gone");
    });
}

bool KnownService::isFreshlyResolved() const
{
    return mResolvedAt && std::chrono::steady_clock::now() - *mResolvedAt < freshness;
}

void KnownService::addObserver(std::weak_ptr<KnownServiceObserver> observer)
{
    std::erase_if(mObservers, [](const auto& each) { return each.expired(); });
    mObservers.push_back(std::move(observer));
}

void KnownService::resolve()
{
    for (auto& [sighting, state] : mStates) {
        if (!state.isRunning)
            resolve(sighting, state);
    }
}

/// Asks for the kind of address that belongs to the sighting, so that both kinds are found; every
/// second time for any, since a host may announce its one address by the other protocol.
void KnownService::resolve(Sighting sighting, State& state)
{
    ResolveQueue::Job job;
    job.service = mName;
    job.sighting = sighting;
    job.addressProtocol =
        state.failures % 2 == 0 ? sighting.protocol : static_cast<int>(Sighting::anyProtocol);
    job.isUrgent = !isFreshlyResolved() && !isAnyRunning();
    job.answer = [this, sighting](const ResolveAnswer& answer) { handleAnswer(sighting, answer); };
    state.isRunning = true;
    state.running = mQueue->resolve(std::move(job));
}

void KnownService::handleAnswer(Sighting sighting, const ResolveAnswer& answer)
{
    const auto self = shared_from_this();
    const auto found = mStates.find(sighting);
    if (found == mStates.end())
        return;
    auto& state = found->second;
    state.isRunning = false;
    if (const auto* result = std::get_if<ResolvedSighting>(&answer)) {
        takeResult(state, *result);
        return;
    }
    ++state.failures;
    handleFailure(std::get<ResolveFailure>(answer));
}

void KnownService::takeResult(State& state, const ResolvedSighting& result)
{
    state.failures = 0;
    state.result = result;
    mResolvedAt = std::chrono::steady_clock::now();
    mHostName = replacingInvalidUTF8(result.hostName);
    mIsRecordKnown = true;
    // While a change spreads, the network's memory holds the old record too; the watch knows
    // better.
    const bool isWatched = !mMonitor.expired() && mRecords.latest();
    mTXTRecord = isWatched ? *mRecords.latest() : result.TXTRecord;
    collectEndpoints();
    tellObservers([](auto& observer) {
        if (observer.isWaitingForResolve())
            observer.serviceWasResolved();
    });
}

void KnownService::handleFailure(ResolveFailure failure)
{
    if (isAnyRunning() || !isAnyoneWaiting())
        return;
    if (failure == ResolveFailure::impossible) {
        tellObservers([](auto& observer) {
            if (observer.isWaitingForResolve())
                observer.serviceCannotBeResolved("the service's name cannot be resolved");
        });
        return;
    }
    if (std::exchange(mIsRetryScheduled, true))
        return;
    QTimer::singleShot(pauseBeforeRetry, [weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self)
            return;
        self->mIsRetryScheduled = false;
        if (self->isAnyoneWaiting())
            self->resolve();
    });
}

/// IPv4 first: the map is ordered by interface, and what is local to a link needs a zone.
void KnownService::collectEndpoints()
{
    mEndpoints.clear();
    for (const int protocol : {Sighting::IPv4, Sighting::IPv6}) {
        for (const auto& [sighting, state] : mStates) {
            if (sighting.protocol == protocol && state.result &&
                std::find(mEndpoints.begin(), mEndpoints.end(), state.result->endpoint) ==
                    mEndpoints.end())
                mEndpoints.push_back(state.result->endpoint);
        }
    }
}

bool KnownService::isAnyRunning() const
{
    return std::any_of(mStates.begin(), mStates.end(),
                       [](const auto& each) { return each.second.isRunning; });
}

bool KnownService::isAnyoneWaiting() const
{
    return std::any_of(mObservers.begin(), mObservers.end(), [](const auto& each) {
        const auto observer = each.lock();
        return observer && observer->isWaitingForResolve();
    });
}

std::shared_ptr<void> KnownService::monitor()
{
    if (auto monitor = mMonitor.lock())
        return monitor;
    mRecords = {};
    DiscoverySource::RecordEvents events;
    events.seen = [weak = weak_from_this()](Sighting sighting, const Data& record) {
        if (const auto self = weak.lock()) {
            self->mRecords.seen(sighting, record);
            self->recordMayHaveChanged();
        }
    };
    events.gone = [weak = weak_from_this()](Sighting sighting, const Data& record) {
        if (const auto self = weak.lock()) {
            self->mRecords.gone(sighting, record);
            self->recordMayHaveChanged();
        }
    };
    const auto monitor =
        std::make_shared<Subscription>(mQueue->source().watchTXTRecord(mName, std::move(events)));
    mMonitor = monitor;
    return monitor;
}

void KnownService::recordMayHaveChanged()
{
    if (!mRecords.latest())
        return;
    const Data& latest = *mRecords.latest();
    const bool wasKnown = std::exchange(mIsRecordKnown, true);
    const bool hasChanged = std::exchange(mTXTRecord, latest) != latest;
    if (!wasKnown || !hasChanged || !mIsPresent)
        return;
    const Data record = mTXTRecord;
    tellObservers([&](auto& observer) { observer.recordChanged(record); });
}

template <typename Action> void KnownService::tellObservers(Action action)
{
    const auto self = shared_from_this();
    const auto observers = mObservers;
    for (const auto& each : observers) {
        if (const auto observer = each.lock())
            action(*observer);
    }
}

} // namespace farview
