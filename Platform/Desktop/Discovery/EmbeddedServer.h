#pragma once

#include "Platform/Types/DiscoveryCondition.h"

#include <avahi-core/core.h>

#include <functional>
#include <memory>
#include <string>

namespace farview
{

/// The embedded discovery stack: takes part in the network's talk by itself. Publishes nothing of
/// its own accord.
class EmbeddedServer
{
public:
    /// How starting it went: `working`, or why it cannot.
    struct Result {
        std::shared_ptr<EmbeddedServer> server;
        DiscoveryCondition condition = DiscoveryCondition::unavailable;
    };

    static Result start();
    ~EmbeddedServer();
    EmbeddedServer(const EmbeddedServer&) = delete;
    EmbeddedServer& operator=(const EmbeddedServer&) = delete;

    /// To be held inside every callback of the library: the stack must not go while it reports, so
    /// its end waits for the next turn.
    class Report
    {
    public:
        Report() { ++depth; }
        ~Report() { --depth; }
        Report(const Report&) = delete;
        Report& operator=(const Report&) = delete;

    private:
        friend class EmbeddedServer;
        static inline int depth = 0;
    };

    AvahiServer* get() const { return mServer; }
    /// Called on a later turn when the stack cannot go on.
    void setFailed(std::function<void()> failed) { mFailed = std::move(failed); }

private:
    EmbeddedServer() = default;
    static void release(EmbeddedServer* server);
    static void stateChanged(AvahiServer* server, AvahiServerState state, void* self);

    AvahiServer* mServer = nullptr;
    std::function<void()> mFailed;
};

} // namespace farview
