#include "Platform/Desktop/Discovery/EmbeddedSource.h"

#include "Platform/Desktop/Discovery/ServiceNames.h"

#include <avahi-common/address.h>
#include <avahi-common/strlst.h>
#include <avahi-core/lookup.h>

#include <QTimer>

#include <array>
#include <utility>

namespace farview
{
namespace
{

constexpr auto noFlags = AvahiLookupFlags{};

Data recordOf(AvahiStringList* list)
{
    Data data;
    data.bytes.resize(avahi_string_list_serialize(list, nullptr, 0));
    avahi_string_list_serialize(list, data.bytes.data(), data.bytes.size());
    return data;
}

std::string textOf(const AvahiAddress& address)
{
    std::array<char, AVAHI_ADDRESS_STR_MAX> buffer{};
    avahi_address_snprint(buffer.data(), buffer.size(), &address);
    return buffer.data();
}

/// The library's objects may be freed inside their own callback, but what their callback captured
/// must last until it returns: each callback copies what it calls.
struct Browser {
    std::shared_ptr<EmbeddedServer> server;
    DiscoverySource::SearchEvents events;
    AvahiSServiceBrowser* browser = nullptr;

    ~Browser()
    {
        if (browser)
            avahi_s_service_browser_free(browser);
    }

    static void hear(AvahiSServiceBrowser*, AvahiIfIndex interface, AvahiProtocol protocol,
                     AvahiBrowserEvent event, const char* name, const char*, const char*,
                     AvahiLookupResultFlags, void* self)
    {
        const EmbeddedServer::Report report;
        const auto& events = static_cast<Browser*>(self)->events;
        const auto tell = event == AVAHI_BROWSER_NEW      ? events.seen
                          : event == AVAHI_BROWSER_REMOVE ? events.gone
                                                          : nullptr;
        if (tell)
            tell(name, {interface, protocol});
    }
};

struct Resolver {
    std::shared_ptr<EmbeddedServer> server;
    std::function<void(ResolveAnswer)> answer;
    AvahiSServiceResolver* resolver = nullptr;

    ~Resolver()
    {
        if (resolver)
            avahi_s_service_resolver_free(resolver);
    }

    static void hear(AvahiSServiceResolver*, AvahiIfIndex interface, AvahiProtocol,
                     AvahiResolverEvent event, const char*, const char*, const char*,
                     const char* host, const AvahiAddress* address, uint16_t port,
                     AvahiStringList* record, AvahiLookupResultFlags, void* self)
    {
        const EmbeddedServer::Report report;
        const auto answer = static_cast<Resolver*>(self)->answer;
        if (event != AVAHI_RESOLVER_FOUND || !address) {
            answer(ResolveFailure::noAnswer);
            return;
        }
        answer(ResolvedSighting{withoutTrailingDot(host),
                                recordOf(record),
                                {textOf(*address), port, static_cast<std::uint32_t>(interface)}});
    }
};

struct RecordBrowser {
    std::shared_ptr<EmbeddedServer> server;
    DiscoverySource::RecordEvents events;
    AvahiSRecordBrowser* browser = nullptr;

    ~RecordBrowser()
    {
        if (browser)
            avahi_s_record_browser_free(browser);
    }

    static void hear(AvahiSRecordBrowser*, AvahiIfIndex interface, AvahiProtocol protocol,
                     AvahiBrowserEvent event, AvahiRecord* record, AvahiLookupResultFlags,
                     void* self)
    {
        const EmbeddedServer::Report report;
        const auto& events = static_cast<RecordBrowser*>(self)->events;
        const auto tell = event == AVAHI_BROWSER_NEW      ? events.seen
                          : event == AVAHI_BROWSER_REMOVE ? events.gone
                                                          : nullptr;
        if (tell && record && record->key->type == AVAHI_DNS_TYPE_TXT)
            tell({interface, protocol}, recordOf(record->data.txt.string_list));
    }
};

template <typename Object> Subscription handleOf(std::shared_ptr<Object> object)
{
    return Subscription([object = std::move(object)]() mutable { object.reset(); });
}

void refuseLater(const std::shared_ptr<Resolver>& resolver)
{
    QTimer::singleShot(0, [weak = std::weak_ptr(resolver)] {
        if (const auto living = weak.lock())
            living->answer(ResolveFailure::impossible);
    });
}

} // namespace

EmbeddedSource::EmbeddedSource(std::shared_ptr<EmbeddedServer> server) : mServer(std::move(server))
{
}

Subscription EmbeddedSource::search(const std::string& type, const std::string& domain,
                                    SearchEvents events)
{
    auto browser = std::make_shared<Browser>(Browser{mServer, std::move(events)});
    browser->browser = avahi_s_service_browser_new(mServer->get(), AVAHI_IF_UNSPEC,
                                                   AVAHI_PROTO_UNSPEC, type.c_str(), domain.c_str(),
                                                   noFlags, Browser::hear, browser.get());
    return handleOf(std::move(browser));
}

Subscription EmbeddedSource::resolve(const ServiceName& service, Sighting sighting,
                                     int addressProtocol, std::function<void(ResolveAnswer)> answer)
{
    auto resolver = std::make_shared<Resolver>(Resolver{mServer, std::move(answer)});
    resolver->resolver = avahi_s_service_resolver_new(
        mServer->get(), sighting.interfaceIndex, sighting.protocol, service.name.c_str(),
        service.type.c_str(), service.domain.c_str(), addressProtocol, noFlags, Resolver::hear,
        resolver.get());
    if (!resolver->resolver)
        refuseLater(resolver);
    return handleOf(std::move(resolver));
}

/// Its record is asked for on every interface. A resolve would settle for the first interface that
/// answers, which may be one on which the host has no address.
Subscription EmbeddedSource::listenFor(const ServiceName& service, std::function<void()> heard)
{
    RecordEvents events;
    events.seen = [heard = std::move(heard)](Sighting, const Data&) { heard(); };
    return watchTXTRecord(service, std::move(events));
}

Subscription EmbeddedSource::watchTXTRecord(const ServiceName& service, RecordEvents events)
{
    auto watch = std::make_shared<RecordBrowser>(RecordBrowser{mServer, std::move(events)});
    const auto name = fullServiceName(service);
    AvahiKey* key = name.empty()
                        ? nullptr
                        : avahi_key_new(name.c_str(), AVAHI_DNS_CLASS_IN, AVAHI_DNS_TYPE_TXT);
    if (key) {
        watch->browser = avahi_s_record_browser_new(
            mServer->get(), AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, key, AVAHI_LOOKUP_USE_MULTICAST,
            RecordBrowser::hear, watch.get());
        avahi_key_unref(key);
    }
    return handleOf(std::move(watch));
}

} // namespace farview
