#pragma once

#include "Platform/Desktop/Discovery/DiscoverySource.h"

#include <list>
#include <string>
#include <utility>

namespace farview
{

/// A source that the test plays.
class ScriptedSource final : public DiscoverySource
{
public:
    struct Resolve {
        ServiceName service;
        Sighting sighting;
        int addressProtocol;
        std::function<void(ResolveAnswer)> answer;
    };

    Subscription search(const std::string&, const std::string&, SearchEvents events) override
    {
        searchEvents = std::move(events);
        return Subscription([this] { ++endedSearches; });
    }
    Subscription resolve(const ServiceName& service, Sighting sighting, int addressProtocol,
                         std::function<void(ResolveAnswer)> answer) override
    {
        ++resolveCount;
        const auto position = resolves.insert(
            resolves.end(), Resolve{service, sighting, addressProtocol, std::move(answer)});
        return Subscription([this, position] { resolves.erase(position); });
    }
    Subscription watchTXTRecord(const ServiceName&, RecordEvents events) override
    {
        recordEvents = std::move(events);
        return Subscription([this] { ++endedWatches; });
    }

    /// Answers the eldest resolve that is running.
    void answer(const ResolveAnswer& with)
    {
        const auto tell = resolves.front().answer;
        tell(with);
    }

    SearchEvents searchEvents;
    RecordEvents recordEvents;
    std::list<Resolve> resolves; ///< those that are running
    int resolveCount = 0;
    int endedSearches = 0;
    int endedWatches = 0;
};

} // namespace farview
