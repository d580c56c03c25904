#include "Platform/Desktop/Discovery/TypeSearch.h"

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

/// Lets a search that has just begun report what is remembered before it is doubted.
constexpr int timeToReport = 400;
/// For a second after new records came, the old ones are remembered beside them: who returned on
/// another port would be resolved to the old one.
constexpr int timeToForgetOldRecords = 1200;

} // namespace

TypeSearch::TypeSearch(std::string type, std::string domain)
    : mType(std::move(type)), mDomain(std::move(domain)),
      mLiveness({[this](const std::string& name) { died(name); },
                 [this](const std::string& name) { returned(name); }})
{
    mCheckSoon.setSingleShot(true);
    mCheckSoon.setInterval(timeToReport);
    connect(&mCheckSoon, &QTimer::timeout, this, &TypeSearch::askAll);
}

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
        mLiveness.forget(name);
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
    mLiveness.forget(name);
    mDead.erase(name);
}

void TypeSearch::lost()
{
    for (const auto& [name, dead] : mDead)
        mLiveness.forget(name);
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
        mLiveness.check(names);
}

} // namespace farview
