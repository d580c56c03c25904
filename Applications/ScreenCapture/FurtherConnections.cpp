#include "Applications/ScreenCapture/FurtherConnections.h"

#include <algorithm>
#include <utility>

namespace farview
{

FurtherConnections::Further* FurtherConnections::find(const std::string& hostName)
{
    const auto found = std::find_if(mAll.begin(), mAll.end(), [&](const Further& further) {
        return further.hostName == hostName;
    });
    return found == mAll.end() ? nullptr : &*found;
}

bool FurtherConnections::uses(const std::string& hostName) const
{
    return std::any_of(mAll.begin(), mAll.end(), [&](const Further& further) {
        return further.hostName == hostName && !further.hasFailed;
    });
}

void FurtherConnections::add(const std::string& hostName, bool isAutomatic)
{
    Further* known = find(hostName);
    if (!known && isFull())
        return;
    if (!known) {
        known = &mAll.emplace_back(Further{hostName, hostName, mServices.make()});
        known->connection->aim({hostName}, isAutomatic);
        setEvents(*known);
        begin(*known);
    } else if (!isAutomatic) {
        known->connection->takeOver();
        if (known->connection->isIdle())
            begin(*known);
    }
    mServices.listChanged();
}

void FurtherConnections::setEvents(const Further& further)
{
    const std::string host = further.hostName;
    further.connection->setEvents(
        {[this, host] { opened(host); }, [this, host](const std::string&) { ended(host); },
         [this, host](const LinkEnd&) { ended(host); }, [this] { mServices.listChanged(); }});
}

void FurtherConnections::begin(Further& further)
{
    further.hasFailed = false;
    further.isPausing = false;
    look(further);
    if (!further.connection->isIdle() || further.wasConnected)
        return;
    mServices.runLoop.performAfterDelay(searchLimit, further.connection,
                                        [this, host = further.hostName] {
                                            const Further* late = find(host);
                                            if (late && late->connection->isIdle())
                                                ended(host);
                                        });
}

void FurtherConnections::look(Further& further)
{
    const bool waits = further.connection->isIdle() && !further.hasFailed && !further.isPausing;
    const auto target =
        waits ? targetOfHost(mServices.devicesInSight(), further.hostName) : std::nullopt;
    if (!target)
        return;
    further.name = target->serviceName;
    further.connection->aim(*target, further.connection->isAutomatic());
    further.connection->begin();
}

void FurtherConnections::devicesChanged()
{
    for (Further& further : mAll)
        look(further);
}

void FurtherConnections::opened(const std::string& hostName)
{
    Further& further = *find(hostName);
    further.wasConnected = true;
    further.pause.reset();
    mServices.listChanged();
}

/// It was not reached, not found, or is lost.
void FurtherConnections::ended(const std::string& hostName)
{
    Further& further = *find(hostName);
    if (further.connection->isAutomatic()) {
        forget(hostName);
        mServices.automaticEnded(hostName);
        return;
    }
    further.hasFailed = !further.wasConnected;
    if (!further.hasFailed)
        pause(further);
    mServices.listChanged();
}

void FurtherConnections::pause(Further& further)
{
    further.isPausing = true;
    mServices.runLoop.performAfterDelay(further.pause.next(), further.connection,
                                        [this, host = further.hostName] {
                                            if (Further* waiting = find(host)) {
                                                waiting->isPausing = false;
                                                look(*waiting);
                                            }
                                        });
}

void FurtherConnections::leave(const std::string& hostName)
{
    const Further* further = find(hostName);
    if (!further)
        return;
    further->connection->leave();
    forget(hostName);
}

/// It may be a call of the connection that brought us here: it outlives that.
void FurtherConnections::forget(const std::string& hostName)
{
    const auto connection = take(hostName);
    mServices.runLoop.post(connection, [connection] {});
    mServices.listChanged();
}

std::shared_ptr<DeviceConnection> FurtherConnections::take(const std::string& hostName)
{
    const Further* further = find(hostName);
    if (!further)
        return nullptr;
    auto connection = further->connection;
    connection->setEvents({[] {}, [](const std::string&) {}, [](const LinkEnd&) {}, [] {}});
    std::erase_if(mAll, [&](const Further& each) { return each.hostName == hostName; });
    return connection;
}

void FurtherConnections::preferencesChanged()
{
    for (const Further& further : mAll)
        further.connection->preferencesChanged();
}

void FurtherConnections::pairedDevicesChanged()
{
    preferencesChanged();
    for (const FurtherDevice& device : list()) {
        if (!find(device.hostName)->connection->isStillKnown())
            leave(device.hostName);
    }
}

DeviceConnection* FurtherConnections::pairing() const
{
    const auto found = std::find_if(mAll.begin(), mAll.end(), [](const Further& further) {
        return further.connection->isPairing();
    });
    return found == mAll.end() ? nullptr : found->connection.get();
}

void FurtherConnections::quit(const std::function<void()>& said)
{
    for (const Further& further : mAll)
        further.connection->quit(said);
}

std::vector<FurtherDevice> FurtherConnections::list() const
{
    std::vector<FurtherDevice> devices;
    for (const Further& further : mAll) {
        auto state = FurtherDevice::State::connecting;
        if (further.hasFailed)
            state = FurtherDevice::State::failed;
        else if (further.connection->isConnected())
            state = FurtherDevice::State::connected;
        devices.push_back({further.hostName, further.name, state, further.connection->screen()});
    }
    return devices;
}

} // namespace farview
