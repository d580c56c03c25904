#pragma once

#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/PrivateSway.h"

#include <memory>
#include <string>
#include <vector>

/// The real portal of a real sway, with a bus and a PipeWire of its own, and a user who answers its
/// questions at once. Ends with the object. For its length it is the desktop of this
/// process, too.
class PrivatePortal
{
public:
    explicit PrivatePortal(const std::vector<std::string>& monitors = {"1280x800"});

    /// Which monitor the user chooses; none: the user says no. At first it is HEADLESS-1.
    void setAnswer(const std::string& monitor);
    /// How often the user was asked.
    int questions() const;

    PrivateBus& bus() { return mBus; }
    PrivateSway& sway() { return mSway; }
    /// That programs ask.
    ChildProcess& portal() { return *mPortal; }
    ChildProcess& pipeWire() { return *mPipeWire; }

private:
    std::unique_ptr<ChildProcess> start(const std::string& program);
    bool comesToHaveOwner(const char* name);

    PrivateBus mBus;
    TemporaryFolder mFolder;
    SessionBusScope mSession{mBus.address()};
    ScopedEnvironment mDesktop{"XDG_CURRENT_DESKTOP", "sway"};
    ScopedEnvironment mConfiguration{"XDG_CONFIG_HOME", mFolder.path().c_str()};
    ScopedEnvironment mData{"XDG_DATA_HOME", mFolder.path().c_str()};
    PrivateSway mSway;
    std::unique_ptr<ChildProcess> mPipeWire;
    std::unique_ptr<ChildProcess> mSessionManager;
    std::unique_ptr<ChildProcess> mPermissions;
    std::unique_ptr<ChildProcess> mPortalOfSway;
    std::unique_ptr<ChildProcess> mPortal;
};
