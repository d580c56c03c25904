#include "Applications/Doctor/DevicesProbe.h"

#include "Common/Bonjour/DeviceState.h"
#include "Common/FVEConstants.h"

#include <algorithm>
#include <utility>

namespace farview
{

void DevicesProbe::start(Ended ended)
{
    mEnded = std::move(ended);
    mBrowser = mDiscovery.makeBrowser();
    mBrowser->setDelegate(weak_from_this());
    mBrowser->searchForServicesOfType(kVirtualScreenServiceName, "local.");
    mRunLoop.performAfterDelay(mTimes.search, weak_from_this(), [this] {
        mIsSearchOver = true;
        endWhenDone();
    });
}

std::vector<DeviceFact> DevicesProbe::devices() const
{
    std::vector<DeviceFact> facts;
    for (const auto& each : mDevices)
        facts.push_back(each->fact);
    return facts;
}

void DevicesProbe::didFindService(NetServiceBrowser& /*browser*/,
                                  const std::shared_ptr<NetService>& service, bool /*moreComing*/)
{
    // Whoever turns up when the time is over can no longer be asked.
    if (mIsSearchOver)
        return;
    if (mDevices.size() == mostDevices) {
        ++mMore;
        return;
    }
    mDevices.push_back(std::make_unique<Device>(Device{service}));
    mDevices.back()->fact.name = service->name();
    service->setDelegate(weak_from_this());
    service->resolveWithTimeout(mTimes.resolve);
}

void DevicesProbe::didRemoveService(NetServiceBrowser& /*browser*/,
                                    const std::shared_ptr<NetService>& service, bool /*moreComing*/)
{
    std::erase_if(mDevices, [&](const auto& each) { return each->service == service; });
    endWhenDone();
}

void DevicesProbe::netServiceDidResolveAddress(const std::shared_ptr<NetService>& service)
{
    Device* const found = device(*service);
    if (!found || found->question)
        return;
    found->fact.hostName = service->hostName();
    found->fact.endpoints = service->endpoints();
    found->fact.isInUse = isDeviceInUse(*service);
    found->question = std::make_shared<DeviceProbe>(mTimes.question);
    found->question->ask(found->fact.endpoints, [this, found](const DeviceAnswer& answer) {
        found->fact.answer = answer;
        conclude(*found);
    });
}

void DevicesProbe::didNotResolve(const std::shared_ptr<NetService>& service,
                                 const std::string& /*error*/)
{
    Device* const found = device(*service);
    if (found && !found->question)
        conclude(*found);
}

void DevicesProbe::didUpdateTXTRecordData(const std::shared_ptr<NetService>& /*service*/,
                                          const Data& /*data*/)
{
}

DevicesProbe::Device* DevicesProbe::device(const NetService& service)
{
    const auto found = std::find_if(mDevices.begin(), mDevices.end(), [&](const auto& each) {
        return each->service.get() == &service;
    });
    return found == mDevices.end() ? nullptr : found->get();
}

void DevicesProbe::conclude(Device& device)
{
    device.isDone = true;
    endWhenDone();
}

void DevicesProbe::endWhenDone()
{
    const bool isDone = mIsSearchOver && std::all_of(mDevices.begin(), mDevices.end(),
                                                     [](const auto& each) { return each->isDone; });
    if (!isDone || !mEnded)
        return;
    mBrowser->stop();
    // On a later turn: a device may be reporting at this moment.
    mRunLoop.performAfterDelay(Duration(0), weak_from_this(), [this] {
        if (const auto ended = std::exchange(mEnded, nullptr))
            ended(devices(), mMore);
    });
}

} // namespace farview
