#include "Platform/Desktop/Discovery/EmbeddedServer.h"

#include "Platform/Desktop/Discovery/QtAvahiPoll.h"

#include <avahi-core/log.h>

#include <QTimer>

#include <cerrno>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace farview
{
namespace
{

constexpr std::uint16_t multicastPort = 5353;
/// Three records and two addresses for each of 1,600 services.
constexpr unsigned cacheEntries = 8192;

/// What the library has to say about errors comes back as results; its warning about other stacks
/// on this computer would only confuse.
void discardMessage(AvahiLogLevel, const char*) {}

/// Whether somebody holds the port and shares it with nobody.
bool isPortDenied()
{
    const int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return false;
    const int yes = 1;
    ::setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    ::setsockopt(descriptor, SOL_SOCKET, SO_REUSEPORT, &yes, sizeof yes);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(multicastPort);
    const bool denied =
        ::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0 &&
        errno == EADDRINUSE;
    ::close(descriptor);
    return denied;
}

void switchPublishingOff(AvahiServerConfig& config)
{
    config.publish_hinfo = 0;
    config.publish_addresses = 0;
    config.publish_workstation = 0;
    config.publish_domain = 0;
    config.enable_wide_area = 0;
    config.n_cache_entries_max = cacheEntries;
}

} // namespace

EmbeddedServer::Result EmbeddedServer::start()
{
    // By the other protocol the stack would start all the same, and find next to nothing.
    if (isPortDenied())
        return {nullptr, DiscoveryCondition::refused};
    avahi_set_log_function(discardMessage);
    AvahiServerConfig config;
    avahi_server_config_init(&config);
    switchPublishingOff(config);
    const std::shared_ptr<EmbeddedServer> server(new EmbeddedServer, release);
    int error = 0;
    server->mServer = avahi_server_new(qtAvahiPoll(), &config, stateChanged, server.get(), &error);
    avahi_server_config_free(&config);
    if (server->mServer)
        return {server, DiscoveryCondition::working};
    return {nullptr, DiscoveryCondition::unavailable};
}

EmbeddedServer::~EmbeddedServer()
{
    if (mServer)
        avahi_server_free(mServer);
}

void EmbeddedServer::release(EmbeddedServer* server)
{
    if (Report::depth == 0)
        delete server;
    else
        QTimer::singleShot(0, [server] { delete server; });
}

void EmbeddedServer::stateChanged(AvahiServer*, AvahiServerState state, void* self)
{
    auto* server = static_cast<EmbeddedServer*>(self);
    // The server must not be freed inside its own report.
    if (state == AVAHI_SERVER_FAILURE && server->mFailed)
        QTimer::singleShot(0, server->mFailed);
}

} // namespace farview
