#pragma once

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TemporaryFolder.h"

#include <memory>
#include <string>

/// KDE's window manager without hardware, on Wayland, with a bus and a PipeWire of its own. It has
/// no way to make outputs. The keyboard is American, or Russian. Ends with the object. For its
/// length it is the desktop of this process, too.
class PrivatePlasma
{
public:
    /// Starts it with so many monitors of 1280x720 in a row, Virtual-0 and so on, and waits until
    /// it answers. `trusted` is the program whose desktop file says that it may make outputs and
    /// give input; empty: none but those of $XDG_DATA_DIRS.
    explicit PrivatePlasma(int monitors = 2, const std::string& trusted = "/proc/self/exe");

    PrivateBus& bus() { return mBus; }
    ChildProcess& kwin() { return *mKWin; }

private:
    std::unique_ptr<ChildProcess> start(const std::string& command);
    void trust(const std::string& program);

    PrivateBus mBus;
    TemporaryFolder mFolder;
    std::string mDataFolders;
    SessionBusScope mSession{mBus.address()};
    ScopedEnvironment mSystemBus{"DBUS_SYSTEM_BUS_ADDRESS", mBus.address().c_str()};
    ScopedEnvironment mHome{"HOME", mFolder.path().c_str()};
    ScopedEnvironment mRuntime{"XDG_RUNTIME_DIR", mFolder.path().c_str()};
    ScopedEnvironment mConfiguration{"XDG_CONFIG_HOME", mFolder.path().c_str()};
    ScopedEnvironment mData{"XDG_DATA_HOME", mFolder.path().c_str()};
    ScopedEnvironment mCache{"XDG_CACHE_HOME", mFolder.path().c_str()};
    ScopedEnvironment mFolders;
    ScopedEnvironment mDesktop{"XDG_CURRENT_DESKTOP", "KDE"};
    ScopedEnvironment mWayland{"WAYLAND_DISPLAY", "wayland-test"};
    ScopedEnvironment mDisplay{"DISPLAY", nullptr};
    std::unique_ptr<ChildProcess> mPipeWire;
    std::unique_ptr<ChildProcess> mSessionManager;
    std::unique_ptr<ChildProcess> mKWin;
};
