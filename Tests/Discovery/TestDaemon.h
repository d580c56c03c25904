#pragma once

#include "Tests/Support/PrivateBus.h"

#include <memory>
#include <string>
#include <vector>

/// A discovery daemon of the test's own, with a bus of its own, on one host of the test's network.
class TestDaemon
{
public:
    struct Options {
        std::string host;                       ///< "A" or "B"
        std::vector<std::string> serverLines{}; ///< more lines for its [server] section
        bool useIPv6 = false;
        bool startsAtOnce = true;
    };

    explicit TestDaemon(Options options);

    PrivateBus& bus() { return mBus; }
    const std::string& busAddress() const { return mBus.address(); }
    /// Starts the daemon and waits until it is ready.
    void start();
    /// Ends it in order: it says goodbye for everything it published.
    void stop();
    /// Ends it as a power cut would.
    void kill();
    ChildProcess& process() { return *mProcess; }

private:
    Options mOptions;
    PrivateBus mBus;
    TemporaryFolder mFolder;
    std::unique_ptr<ChildProcess> mProcess;
};
