#pragma once

#include "Platform/Desktop/Discovery/KnownService.h"

#include <QObject>
#include <QTimer>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace farview
{

class LivenessCheck;

/// Who searches for services of one type.
class TypeSearchObserver
{
public:
    virtual ~TypeSearchObserver() = default;
    virtual void appeared(const std::shared_ptr<KnownService>& service) = 0;
    virtual void disappeared(const std::shared_ptr<KnownService>& service) = 0;
};

/// The one search for a type on one source, shared by all browsers of that type. Makes one service
/// out of what several interfaces and protocols show.
class TypeSearch : public QObject
{
public:
    using Services = std::vector<std::shared_ptr<KnownService>>;

    TypeSearch(std::string type, std::string domain);
    ~TypeSearch() override;

    const std::string& type() const { return mType; }
    const std::string& domain() const { return mDomain; }
    /// Null until the source is decided.
    const std::shared_ptr<DiscoverySource>& source() const { return mSource; }
    void useSource(std::shared_ptr<DiscoverySource> source);
    /// The source broke: everything goes, until there is another.
    void loseSource();

    void addObserver(std::weak_ptr<TypeSearchObserver> observer);
    void removeObserver(const TypeSearchObserver& observer);
    /// In the order in which they were first seen.
    const Services& services() const { return mServices; }
    /// Asks all services shortly whether they are still there.
    void checkAgain();

private:
    /// A service that did not answer any more, while its records are still remembered.
    struct Dead {
        ServiceName name;
        std::vector<Sighting> sightings;
    };

    void begin();
    void seen(const std::string& name, Sighting sighting);
    void gone(const std::string& name, Sighting sighting);
    void lost();
    void died(const std::string& name);
    void returned(const std::string& name);
    void goneWhileDead(Dead& dead, Sighting sighting);
    std::shared_ptr<KnownService> find(const std::string& name) const;
    void add(const ServiceName& name, const std::vector<Sighting>& sightings);
    void remove(const std::shared_ptr<KnownService>& service);
    void askAll();
    std::vector<std::shared_ptr<TypeSearchObserver>> observers() const;

    std::string mType;
    std::string mDomain;
    std::shared_ptr<DiscoverySource> mSource;
    std::shared_ptr<ResolveQueue> mQueue;
    std::vector<std::weak_ptr<TypeSearchObserver>> mObservers;
    Services mServices;
    std::map<std::string, std::shared_ptr<KnownService>> mByName;
    std::map<std::string, Dead> mDead;
    std::unique_ptr<LivenessCheck> mLiveness;
    QTimer mCheckSoon;
    Subscription mSearch;
};

} // namespace farview
