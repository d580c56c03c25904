#pragma once

#include "Platform/Desktop/Discovery/DiscoverySource.h"
#include "Platform/Desktop/Discovery/EmbeddedServer.h"

#include <memory>

namespace farview
{

/// What this process hears on the network by itself. What its calls return keeps the stack alive.
class EmbeddedSource final : public DiscoverySource
{
public:
    explicit EmbeddedSource(std::shared_ptr<EmbeddedServer> server);

    Subscription search(const std::string& type, const std::string& domain,
                        SearchEvents events) override;
    Subscription resolve(const ServiceName& service, Sighting sighting, int addressProtocol,
                         std::function<void(ResolveAnswer)> answer) override;
    Subscription watchTXTRecord(const ServiceName& service, RecordEvents events) override;
    /// Asks for the service with what is remembered, and listens: `heard` is called for each
    /// answer, on whatever interface it comes.
    Subscription listenFor(const ServiceName& service, std::function<void()> heard);

private:
    std::shared_ptr<EmbeddedServer> mServer;
};

} // namespace farview
