#include "Platform/Fake/FakeDiscovery.h"

#include <algorithm>
#include <utility>

namespace farview
{

FakeDiscovery::FakeDiscovery(FakeRunLoop& loop) : mLoop(loop) {}

std::shared_ptr<NetServiceBrowser> FakeDiscovery::makeBrowser()
{
    const auto present = [this, life = std::weak_ptr<void>(mLife)] {
        return life.expired() ? FakeNetServiceBrowser::Devices{} : presentDevices();
    };
    auto browser = std::make_shared<FakeNetServiceBrowser>(mLoop, present);
    mBrowsers.push_back(browser);
    return browser;
}

FakeNetServiceBrowser::Devices FakeDiscovery::presentDevices() const
{
    FakeNetServiceBrowser::Devices devices;
    for (const auto& present : mPresent)
        devices.push_back(present.device);
    return devices;
}

std::vector<std::shared_ptr<FakeNetServiceBrowser>> FakeDiscovery::browsers() const
{
    std::vector<std::shared_ptr<FakeNetServiceBrowser>> living;
    for (const auto& each : mBrowsers) {
        if (auto browser = each.lock())
            living.push_back(std::move(browser));
    }
    return living;
}

std::shared_ptr<FakeNetService> FakeDiscovery::service(const std::string& name) const
{
    const auto living = browsers();
    if (living.empty())
        return nullptr;
    const auto& services = living.back()->services();
    const auto found = std::find_if(services.begin(), services.end(),
                                    [&](const auto& each) { return each->name() == name; });
    return found == services.end() ? nullptr : *found;
}

FakeDiscovery::Present* FakeDiscovery::find(const std::string& name)
{
    const auto found = std::find_if(mPresent.begin(), mPresent.end(),
                                    [&](const auto& each) { return each.device->name == name; });
    return found == mPresent.end() ? nullptr : &*found;
}

void FakeDiscovery::announce(std::vector<FakeDevice> devices)
{
    FakeNetServiceBrowser::Devices batch;
    for (auto& device : devices) {
        auto shared = std::make_shared<FakeDevice>(std::move(device));
        mPresent.push_back({shared, false});
        batch.push_back(std::move(shared));
    }
    for (const auto& browser : browsers())
        browser->find(batch);
}

void FakeDiscovery::remove(const std::vector<std::string>& names)
{
    FakeNetServiceBrowser::Devices batch;
    for (const auto& name : names) {
        const auto* present = find(name);
        if (!present)
            continue;
        batch.push_back(present->device);
        mPresent.erase(mPresent.begin() + (present - mPresent.data()));
    }
    removeDevices(batch);
}

void FakeDiscovery::removeDevices(const FakeNetServiceBrowser::Devices& devices)
{
    for (const auto& browser : browsers())
        browser->remove(devices);
}

void FakeDiscovery::kill(const std::string& name)
{
    setResolve(name, {FakeResolve::Outcome::never, Duration::zero(), true});
    if (auto* present = find(name))
        present->dead = true;
}

void FakeDiscovery::checkAgain()
{
    ++mCheckAgainCount;
    FakeNetServiceBrowser::Devices batch;
    for (const auto& present : mPresent) {
        if (present.dead)
            batch.push_back(present.device);
    }
    std::erase_if(mPresent, [](const Present& present) { return present.dead; });
    removeDevices(batch);
}

void FakeDiscovery::setTXTRecord(const std::string& name, std::map<std::string, Data> record)
{
    if (const auto* present = find(name)) {
        present->device->TXTRecord = std::move(record);
        present->device->rawTXTRecord = {};
        TXTRecordChanged(present->device);
    }
}

void FakeDiscovery::setRawTXTRecord(const std::string& name, Data record)
{
    if (const auto* present = find(name)) {
        present->device->TXTRecord.clear();
        present->device->rawTXTRecord = std::move(record);
        TXTRecordChanged(present->device);
    }
}

void FakeDiscovery::TXTRecordChanged(const std::shared_ptr<FakeDevice>& device)
{
    for (const auto& browser : browsers()) {
        for (const auto& service : browser->services()) {
            if (service->device() == device)
                service->TXTRecordChanged();
        }
    }
}

void FakeDiscovery::setResolve(const std::string& name, FakeResolve resolve)
{
    if (const auto* present = find(name))
        present->device->resolve = resolve;
}

void FakeDiscovery::setCondition(DiscoveryCondition condition)
{
    if (mCondition == condition)
        return;
    mCondition = condition;
    mLoop.performAfterDelay(Duration::zero(), mLife, [this] { mConditionObservers.tell(); });
}

Subscription FakeDiscovery::observeCondition(std::function<void()> changed)
{
    return mConditionObservers.add(std::move(changed));
}

} // namespace farview
