#pragma once

#include "Platform/Desktop/Discovery/ResolveQueue.h"

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace farview
{

/// Tells from the coming and going of a service's TXT records which is the current one. A new
/// record comes before the old one goes, once per interface and protocol.
class TXTRecordTracker
{
public:
    void seen(Sighting sighting, const Data& record)
    {
        std::erase(mPresent, std::pair(sighting, record));
        mPresent.emplace_back(sighting, record);
        mLatest = record;
    }

    void gone(Sighting sighting, const Data& record)
    {
        std::erase(mPresent, std::pair(sighting, record));
        // A service that changes its mind within a second takes back a record that never went away.
        if (!mPresent.empty())
            mLatest = mPresent.back().second;
    }

    /// Nothing until a record was seen; the last one stays when all have gone.
    const std::optional<Data>& latest() const { return mLatest; }

private:
    std::vector<std::pair<Sighting, Data>> mPresent;
    std::optional<Data> mLatest;
};

/// Who wants to hear what becomes of a known service.
class KnownServiceObserver
{
public:
    virtual ~KnownServiceObserver() = default;
    virtual bool isWaitingForResolve() const = 0;
    virtual void serviceWasResolved() = 0;
    /// It cannot be resolved now, however long one waits.
    virtual void serviceCannotBeResolved(const std::string& reason) = 0;
    virtual void recordChanged(const Data& record) = 0;
};

/// One service as this process knows it, whatever number of interfaces shows it and of browsers
/// found it. Resolved as soon as it is seen, and again when somebody asks later.
class KnownService : public std::enable_shared_from_this<KnownService>
{
public:
    KnownService(ServiceName name, std::shared_ptr<ResolveQueue> queue);

    /// What identifies it on the network.
    const ServiceName& name() const { return mName; }
    /// The name in valid UTF-8.
    const std::string& printableName() const { return mPrintableName; }
    bool isPresent() const { return mIsPresent; }
    std::vector<Sighting> sightings() const;

    void seen(Sighting sighting);
    /// True when that was the last sighting.
    bool gone(Sighting sighting);
    /// It was removed: what waits for it hears so.
    void leave();

    /// What the latest resolves gave; empty before the first.
    const std::string& hostName() const { return mHostName; }
    const std::vector<Endpoint>& endpoints() const { return mEndpoints; }
    /// The latest record known: the watched one, else that of the latest resolve.
    const Data& TXTRecord() const { return mTXTRecord; }
    /// Whether the last resolve is so recent that another one would tell nothing new.
    bool isFreshlyResolved() const;

    void addObserver(std::weak_ptr<KnownServiceObserver> observer);
    /// Asks the network; every waiting observer hears of the first answer.
    void resolve();
    /// Watches the TXT record while any of the handles lives.
    std::shared_ptr<void> monitor();

private:
    struct State {
        std::optional<ResolvedSighting> result;
        Subscription running;
        bool isRunning = false;
        unsigned failures = 0;
    };

    void resolve(Sighting sighting, State& state);
    void handleAnswer(Sighting sighting, const ResolveAnswer& answer);
    void takeResult(State& state, const ResolvedSighting& result);
    void handleFailure(ResolveFailure failure);
    void collectEndpoints();
    bool isAnyRunning() const;
    bool isAnyoneWaiting() const;
    void recordMayHaveChanged();
    template <typename Action> void tellObservers(Action action);

    ServiceName mName;
    std::string mPrintableName;
    std::shared_ptr<ResolveQueue> mQueue;
    std::map<Sighting, State> mStates;
    std::string mHostName;
    std::vector<Endpoint> mEndpoints;
    Data mTXTRecord;
    bool mIsRecordKnown = false;
    std::optional<std::chrono::steady_clock::time_point> mResolvedAt;
    std::vector<std::weak_ptr<KnownServiceObserver>> mObservers;
    std::weak_ptr<void> mMonitor;
    TXTRecordTracker mRecords;
    bool mIsPresent = true;
    bool mIsRetryScheduled = false;
};

} // namespace farview
