#include "Benchmarks/AvahiPrograms.h"

#include "Benchmarks/Figures.h"
#include "Common/FVEConstants.h"

#include <avahi-common/error.h>
#include <avahi-common/malloc.h>
#include <avahi-common/simple-watch.h>
#include <avahi-core/core.h>
#include <avahi-core/log.h>
#include <avahi-core/lookup.h>
#include <avahi-core/publish.h>

#include <cstdio>
#include <memory>
#include <string>
#include <unistd.h>
#include <utility>

namespace farview
{
namespace
{

struct FreePoll {
    void operator()(AvahiSimplePoll* poll) const { avahi_simple_poll_free(poll); }
};
struct FreeServer {
    void operator()(AvahiServer* server) const { avahi_server_free(server); }
};

/// The library talks about every interface; only errors matter here.
void logErrors(AvahiLogLevel level, const char* text)
{
    if (level == AVAHI_LOG_ERROR)
        std::fprintf(stderr, "%s\n", text);
}

/// A loop and a stack of its own, and the lines that arrive on standard input.
class AvahiProgram
{
public:
    virtual ~AvahiProgram() = default;

    int run()
    {
        avahi_set_log_function(logErrors);
        const AvahiPoll* poll = avahi_simple_poll_get(mPoll.get());
        AvahiServerConfig config;
        avahi_server_config_init(&config);
        config.publish_hinfo = config.publish_workstation = config.publish_domain = 0;
        config.publish_addresses = publishesAddresses() ? 1 : 0;
        // One network, as a device has: three stacks that repeat 500 services to one another on
        // every interface of one computer lose packets, and then that is what would be measured.
        config.use_ipv6 = 0;
        config.deny_interfaces = avahi_string_list_new("lo", nullptr);
        // Other stacks on this computer have its own name.
        avahi_free(config.host_name);
        config.host_name = avahi_strdup(("benchmark-" + std::to_string(getpid())).c_str());
        int error = 0;
        mServer.reset(avahi_server_new(poll, &config, stateChanged, this, &error));
        avahi_server_config_free(&config);
        if (!mServer) {
            std::fprintf(stderr, "no discovery: %s\n", avahi_strerror(error));
            return 1;
        }
        if (!publishesAddresses())
            begin();
        poll->watch_new(poll, STDIN_FILENO, AVAHI_WATCH_IN, inputArrived, this);
        avahi_simple_poll_loop(mPoll.get());
        return 0;
    }

protected:
    AvahiServer* server() const { return mServer.get(); }
    virtual bool publishesAddresses() const = 0;
    virtual void begin() {}
    virtual void lineArrived(const std::string& /*line*/) {}

private:
    static void stateChanged(AvahiServer* /*server*/, AvahiServerState state, void* self)
    {
        auto* program = static_cast<AvahiProgram*>(self);
        if (state == AVAHI_SERVER_RUNNING && program->publishesAddresses())
            program->begin();
    }
    static void inputArrived(AvahiWatch* /*watch*/, int descriptor, AvahiWatchEvent /*event*/,
                             void* self)
    {
        static_cast<AvahiProgram*>(self)->readInput(descriptor);
    }
    void readInput(int descriptor)
    {
        char bytes[4096];
        const auto count = read(descriptor, bytes, sizeof bytes);
        if (count <= 0)
            avahi_simple_poll_quit(mPoll.get());
        for (ssize_t index = 0; index < count; ++index) {
            if (bytes[index] != '\n')
                mLine += bytes[index];
            else
                lineArrived(std::exchange(mLine, {}));
        }
    }

    std::unique_ptr<AvahiSimplePoll, FreePoll> mPoll{avahi_simple_poll_new()};
    std::unique_ptr<AvahiServer, FreeServer> mServer;
    std::string mLine;
};

void report(const std::string& name)
{
    std::printf("%.1f %s\n", microsecondsNow(), name.c_str());
    std::fflush(stdout);
}

class BareBrowser final : public AvahiProgram
{
    bool publishesAddresses() const override { return false; }
    void begin() override
    {
        avahi_s_service_browser_new(server(), AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC,
                                    kVirtualScreenServiceName, "local", AvahiLookupFlags(0), seen,
                                    server());
    }
    static void seen(AvahiSServiceBrowser* /*browser*/, AvahiIfIndex interface,
                     AvahiProtocol protocol, AvahiBrowserEvent event, const char* name,
                     const char* type, const char* domain, AvahiLookupResultFlags /*flags*/,
                     void* server)
    {
        if (event == AVAHI_BROWSER_NEW)
            avahi_s_service_resolver_new(static_cast<AvahiServer*>(server), interface, protocol,
                                         name, type, domain, AVAHI_PROTO_UNSPEC,
                                         AvahiLookupFlags(0), resolved, nullptr);
    }
    static void resolved(AvahiSServiceResolver* resolver, AvahiIfIndex /*interface*/,
                         AvahiProtocol /*protocol*/, AvahiResolverEvent event, const char* name,
                         const char* /*type*/, const char* /*domain*/, const char* /*hostName*/,
                         const AvahiAddress* /*address*/, std::uint16_t /*port*/,
                         AvahiStringList* /*text*/, AvahiLookupResultFlags /*flags*/,
                         void* /*nothing*/)
    {
        if (event == AVAHI_RESOLVER_FOUND)
            report(name);
        avahi_s_service_resolver_free(resolver);
    }
};

class Announcer final : public AvahiProgram
{
    bool publishesAddresses() const override { return true; }
    void begin() override { report("ready"); }
    void lineArrived(const std::string& name) override
    {
        auto* group = avahi_s_entry_group_new(server(), changed, nullptr);
        if (!group ||
            avahi_server_add_service(server(), group, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC,
                                     AvahiPublishFlags(0), name.c_str(), kVirtualScreenServiceName,
                                     nullptr, nullptr, kMainDataTrafficPort,
                                     "ConnState=NotConnected", nullptr) < 0 ||
            avahi_s_entry_group_commit(group) < 0)
            std::fprintf(stderr, "\"%s\" cannot be announced: %s\n", name.c_str(),
                         avahi_strerror(avahi_server_errno(server())));
    }
    static void changed(AvahiServer* /*server*/, AvahiSEntryGroup* /*group*/,
                        AvahiEntryGroupState /*state*/, void* /*nothing*/)
    {
    }
};

} // namespace

int runBareBrowser() { return BareBrowser().run(); }

int runAnnouncer() { return Announcer().run(); }

} // namespace farview
