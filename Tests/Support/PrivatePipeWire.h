#pragma once

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WaitUntil.h"

#include <filesystem>
#include <stdexcept>

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
    }

    ChildProcess& process() { return mServer; }

private:
    TemporaryFolder mFolder;
    ScopedEnvironment mRuntime{"XDG_RUNTIME_DIR", mFolder.path().c_str()};
    ScopedEnvironment mConfiguration{"XDG_CONFIG_HOME", mFolder.path().c_str()};
    ChildProcess mServer{{"sh", "-c", "exec pipewire >/dev/null 2>&1"}};
    ChildProcess mSessionManager{{"sh", "-c", "exec wireplumber >/dev/null 2>&1"}};
};
