#pragma once

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WaitUntil.h"

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

/// A PipeWire of the test's own, which links streams to the nodes that they want. For its length it
/// is that of this process, too.
class PrivatePipeWire
{
public:
    PrivatePipeWire()
    {
        const auto socket = mFolder.path("pipewire-0");
        if (!waitUntil([&] { return std::filesystem::exists(socket); }, std::chrono::seconds(30)))
            throw std::runtime_error("no PipeWire");
        mSessionManager = start("wireplumber");
    }

    ChildProcess& process() { return *mServer; }

private:
    static std::unique_ptr<ChildProcess> start(const std::string& program)
    {
        return std::make_unique<ChildProcess>(
            std::vector<std::string>{"sh", "-c", "exec " + program + " >/dev/null 2>&1"});
    }

    TemporaryFolder mFolder;
    ScopedEnvironment mRuntime{"XDG_RUNTIME_DIR", mFolder.path().c_str()};
    ScopedEnvironment mConfiguration{"XDG_CONFIG_HOME", mFolder.path().c_str()};
    std::unique_ptr<ChildProcess> mServer = start("pipewire");
    std::unique_ptr<ChildProcess> mSessionManager; ///< gives up where there is no server yet
};
