#include "Platform/Desktop/Discovery/EmbeddedServer.h"

#include <QSocketNotifier>
#include <QTimer>

#include <avahi-common/timeval.h>
#include <avahi-core/log.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

// The library leaves these two types to whoever provides the loop. Both may be freed inside their
// own callback, so nothing of them is touched after it, and Qt's objects go a turn later.

namespace
{

struct DeleteLater {
    void operator()(QObject* object) const
    {
        object->disconnect();
        object->deleteLater();
    }
};

} // namespace

struct AvahiWatch {
    std::unique_ptr<QSocketNotifier, DeleteLater> in;
    std::unique_ptr<QSocketNotifier, DeleteLater> out;
    int descriptor = -1;
    AvahiWatchEvent happened{};
    AvahiWatchCallback callback = nullptr;
    void* userdata = nullptr;

    void fire(AvahiWatchEvent event)
    {
        happened = event;
        callback(this, descriptor, event, userdata);
    }

    void setWanted(int events)
    {
        in->setEnabled((events & AVAHI_WATCH_IN) != 0);
        out->setEnabled((events & AVAHI_WATCH_OUT) != 0);
    }
};

struct AvahiTimeout {
    std::unique_ptr<QTimer, DeleteLater> timer;

    void setTime(const timeval* time)
    {
        if (!time) {
            timer->stop();
            return;
        }
        // avahi_age() is positive for what has passed; a started microsecond waits a millisecond.
        const AvahiUsec left = std::max<AvahiUsec>(-avahi_age(time), 0);
        timer->start(static_cast<int>(std::min<AvahiUsec>((left + 999) / 1000, 86'400'000)));
    }
};

namespace farview
{
namespace
{

AvahiWatch* newWatch(const AvahiPoll*, int descriptor, AvahiWatchEvent event,
                     AvahiWatchCallback callback, void* userdata)
{
    auto watch = std::make_unique<AvahiWatch>();
    watch->in.reset(new QSocketNotifier(descriptor, QSocketNotifier::Read));
    watch->out.reset(new QSocketNotifier(descriptor, QSocketNotifier::Write));
    watch->descriptor = descriptor;
    watch->callback = callback;
    watch->userdata = userdata;
    watch->setWanted(event);
    auto* raw = watch.get();
    QObject::connect(raw->in.get(), &QSocketNotifier::activated, raw->in.get(),
                     [raw] { raw->fire(AVAHI_WATCH_IN); });
    QObject::connect(raw->out.get(), &QSocketNotifier::activated, raw->out.get(),
                     [raw] { raw->fire(AVAHI_WATCH_OUT); });
    return watch.release();
}

void updateWatch(AvahiWatch* watch, AvahiWatchEvent event) { watch->setWanted(event); }

AvahiWatchEvent eventsOfWatch(AvahiWatch* watch) { return watch->happened; }

void freeWatch(AvahiWatch* watch)
{
    watch->setWanted(0);
    const std::unique_ptr<AvahiWatch> owner(watch);
}

AvahiTimeout* newTimeout(const AvahiPoll*, const timeval* time, AvahiTimeoutCallback callback,
                         void* userdata)
{
    auto timeout = std::make_unique<AvahiTimeout>();
    timeout->timer.reset(new QTimer);
    timeout->timer->setSingleShot(true);
    timeout->timer->setTimerType(Qt::PreciseTimer);
    timeout->setTime(time);
    auto* raw = timeout.get();
    QObject::connect(raw->timer.get(), &QTimer::timeout, raw->timer.get(),
                     [raw, callback, userdata] { callback(raw, userdata); });
    return timeout.release();
}

void updateTimeout(AvahiTimeout* timeout, const timeval* time) { timeout->setTime(time); }

void freeTimeout(AvahiTimeout* timeout)
{
    timeout->timer->stop();
    const std::unique_ptr<AvahiTimeout> owner(timeout);
}

/// Lets the stack live on Qt's loop. Stateless; the loop is that of the calling thread.
const AvahiPoll* qtAvahiPoll()
{
    static const AvahiPoll poll = {nullptr,   newWatch,   updateWatch,   eventsOfWatch,
                                   freeWatch, newTimeout, updateTimeout, freeTimeout};
    return &poll;
}

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
