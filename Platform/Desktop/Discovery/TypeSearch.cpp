#include "Platform/Desktop/Discovery/TypeSearch.h"

#include "Platform/Desktop/Discovery/EmbeddedSource.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>

namespace farview
{
namespace
{

/// Long enough for three questions and the answer to the last.
constexpr auto timeToAnswer = std::chrono::seconds(4);

/// Lets a search that has just begun report what is remembered before it is doubted.
constexpr int timeToReport = 400;
/// For a second after new records came, the old ones are remembered beside them: who returned on
/// another port would be resolved to the old one.
constexpr int timeToForgetOldRecords = 1200;

} // namespace

/// Finds out which services still answer. Whoever remembers records may keep those of a dead host
/// for an hour, so this asks with a memory of its own that begins empty, and goes on listening for
/// those that did not answer.
class LivenessCheck : public QObject
{
public:
    struct Events {
        /// It did not answer. It is listened for from now on.
        std::function<void(const std::string& name)> died;
        /// One that had died answers.
        std::function<void(const std::string& name)> returned;
    };

    explicit LivenessCheck(Events events) : mEvents(std::move(events)) {}

    /// Those that are being asked or listened for already are left alone.
    void check(const std::vector<ServiceName>& services)
    {
        auto start = EmbeddedServer::start();
        // A daemon that allows no other beside it: what it says has to be believed.
        if (!start.server)
            return;
        EmbeddedSource source(std::move(start.server));
        std::vector<std::string> asked;
        for (const auto& service : services) {
            const auto [position, isNew] = mListeners.try_emplace(service.name);
            if (!isNew)
                continue;
            const auto name = service.name;
            position->second.listening = source.listenFor(service, [this, name] { hear(name); });
            asked.push_back(name);
        }
        QTimer::singleShot(timeToAnswer, this, [this, asked] { judge(asked); });
    }

    /// Ends the interest in one.
    void forget(const std::string& name) { mListeners.erase(name); }

private:
    struct Listener {
        Subscription listening;
        bool isDead = false;
    };

    void hear(const std::string& name)
    {
        const auto found = mListeners.find(name);
        if (found == mListeners.end())
            return;
        const bool wasDead = found->second.isDead;
        const auto ended = mListeners.extract(found);
        if (wasDead)
            mEvents.returned(name);
    }

    void judge(const std::vector<std::string>& names)
    {
        for (const auto& name : names) {
            const auto found = mListeners.find(name);
            if (found == mListeners.end() || std::exchange(found->second.isDead, true))
                continue;
            mEvents.died(name);
        }
    }

    Events mEvents;
    std::map<std::string, Listener> mListeners;
};

TypeSearch::TypeSearch(std::string type, std::string domain)
    : mType(std::move(type)), mDomain(std::move(domain)),
      mLiveness(std::make_unique<LivenessCheck>(
          LivenessCheck::Events{[this](const std::string& name) { died(name); },
                                [this](const std::string& name) { returned(name); }}))
{
    mCheckSoon.setSingleShot(true);
    mCheckSoon.setInterval(timeToReport);
    connect(&mCheckSoon, &QTimer::timeout, this, &TypeSearch::askAll);
}

TypeSearch::~TypeSearch() = default;

void TypeSearch::useSource(std::shared_ptr<DiscoverySource> source)
{
    mSource = std::move(source);
    mQueue = std::make_shared<ResolveQueue>(mSource);
    begin();
}

void TypeSearch::begin()
{
    DiscoverySource::SearchEvents events;
    events.seen = [this](const std::string& name, Sighting sighting) { seen(name, sighting); };
    events.gone = [this](const std::string& name, Sighting sighting) { gone(name, sighting); };
    events.lost = [this] { lost(); };
    mSearch = mSource->search(mType, mDomain, std::move(events));
}

void TypeSearch::loseSource()
{
    lost();
    mSearch.end();
    mQueue.reset();
    mSource.reset();
}

void TypeSearch::addObserver(std::weak_ptr<TypeSearchObserver> observer)
{
    std::erase_if(mObservers, [](const auto& each) { return each.expired(); });
    mObservers.push_back(std::move(observer));
}

void TypeSearch::removeObserver(const TypeSearchObserver& observer)
{
    std::erase_if(mObservers, [&](const auto& each) { return each.lock().get() == &observer; });
}

std::vector<std::shared_ptr<TypeSearchObserver>> TypeSearch::observers() const
{
    std::vector<std::shared_ptr<TypeSearchObserver>> living;
    for (const auto& each : mObservers) {
        if (auto observer = each.lock())
            living.push_back(std::move(observer));
    }
    return living;
}

std::shared_ptr<KnownService> TypeSearch::find(const std::string& name) const
{
    const auto found = mByName.find(name);
    return found == mByName.end() ? nullptr : found->second;
}

void TypeSearch::seen(const std::string& name, Sighting sighting)
{
    if (const auto service = find(name)) {
        service->seen(sighting);
        return;
    }
    std::vector<Sighting> sightings{sighting};
    // A record that was forgotten meanwhile and came anew: the service is back.
    if (const auto dead = mDead.extract(name)) {
        mLiveness->forget(name);
        sightings.insert(sightings.end(), dead.mapped().sightings.begin(),
                         dead.mapped().sightings.end());
    }
    add({name, mType, mDomain}, sightings);
}

void TypeSearch::gone(const std::string& name, Sighting sighting)
{
    if (const auto service = find(name)) {
        if (service->gone(sighting))
            remove(service);
        return;
    }
    const auto dead = mDead.find(name);
    if (dead != mDead.end())
        goneWhileDead(dead->second, sighting);
}

void TypeSearch::goneWhileDead(Dead& dead, Sighting sighting)
{
    std::erase(dead.sightings, sighting);
    if (!dead.sightings.empty())
        return;
    const auto name = dead.name.name;
    mLiveness->forget(name);
    mDead.erase(name);
}

void TypeSearch::lost()
{
    for (const auto& [name, dead] : mDead)
        mLiveness->forget(name);
    mDead.clear();
    const auto services = mServices;
    for (const auto& service : services)
        remove(service);
}

void TypeSearch::died(const std::string& name)
{
    const auto service = find(name);
    if (!service)
        return;
    mDead[name] = {service->name(), service->sightings()};
    remove(service);
}

void TypeSearch::returned(const std::string& name)
{
    QTimer::singleShot(timeToForgetOldRecords, this, [this, name] {
        if (const auto dead = mDead.extract(name))
            add(dead.mapped().name, dead.mapped().sightings);
    });
}

void TypeSearch::add(const ServiceName& name, const std::vector<Sighting>& sightings)
{
    const auto service = std::make_shared<KnownService>(name, mQueue);
    mByName[name.name] = service;
    mServices.push_back(service);
    for (const auto sighting : sightings)
        service->seen(sighting);
    for (const auto& observer : observers())
        observer->appeared(service);
}

void TypeSearch::remove(const std::shared_ptr<KnownService>& service)
{
    mByName.erase(service->name().name);
    std::erase(mServices, service);
    for (const auto& observer : observers())
        observer->disappeared(service);
    service->leave();
}

void TypeSearch::checkAgain()
{
    if (!mCheckSoon.isActive())
        mCheckSoon.start();
}

void TypeSearch::askAll()
{
    std::vector<ServiceName> names;
    for (const auto& service : mServices) {
        names.push_back(service->name());
        // It may be where it was not before.
        service->resolve();
    }
    if (!names.empty())
        mLiveness->check(names);
}

} // namespace farview
