#pragma once

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/TemporaryFolder.h"

#include <memory>
#include <string>

/// A session bus of the test's own, without any services to start. Ends with the object.
class PrivateBus
{
public:
    enum class Guests { sameUser, everyone };
    /// Nobody (uid 65534): only where the test runs as root.
    enum class Owner { ourselves, nobody };

    /// Starts the bus and waits until it accepts connections.
    explicit PrivateBus(Guests guests = Guests::sameUser, Owner owner = Owner::ourselves);

    const std::string& address() const { return mAddress; }
    /// The folder of its socket; every user may enter it when everyone is a guest.
    const TemporaryFolder& folder() const { return mFolder; }
    /// Kills the bus, as a crash would; `start` brings a new one at the same address.
    void stop();
    void start();
    ChildProcess& process() { return *mProcess; }

private:
    TemporaryFolder mFolder;
    Owner mOwner;
    std::string mSocket;
    std::string mAddress;
    std::unique_ptr<ChildProcess> mProcess;
};

/// Makes that address the session bus of this process for the length of the scope.
class SessionBusScope
{
public:
    explicit SessionBusScope(const std::string& address)
        : mAddress("DBUS_SESSION_BUS_ADDRESS", address.c_str())
    {
    }

private:
    ScopedEnvironment mAddress;
};
