#pragma once

#include "Platform/Desktop/Discovery/AvahiDaemonLink.h"
#include "Platform/Desktop/Discovery/DiscoverySource.h"

#include <map>
#include <memory>

namespace farview
{

class AvahiDaemonObject;

/// What the discovery daemon knows. Its searches survive the daemon's death and begin anew when one
/// is back.
class AvahiDaemonSource final : public QObject, public DiscoverySource
{
public:
    explicit AvahiDaemonSource(std::shared_ptr<AvahiDaemonLink> link);
    ~AvahiDaemonSource() override;

    Subscription search(const std::string& type, const std::string& domain,
                        SearchEvents events) override;
    Subscription resolve(const ServiceName& service, Sighting sighting, int addressProtocol,
                         std::function<void(ResolveAnswer)> answer) override;
    Subscription watchTXTRecord(const ServiceName& service, RecordEvents events) override;

private:
    struct Search;
    struct Watch;

    void handlePresence();
    void begin(const std::shared_ptr<Search>& search);
    void beginLater(const std::weak_ptr<Search>& search);
    void lose(Search& search);

    std::shared_ptr<AvahiDaemonLink> mLink;
    std::map<unsigned, std::shared_ptr<Search>> mSearches;
    unsigned mLastSearch = 0;
};

} // namespace farview
