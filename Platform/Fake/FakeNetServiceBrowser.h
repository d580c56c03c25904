#pragma once

#include "Platform/Fake/FakeNetService.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace farview
{

/// A search on the scripted network. Each browser hands out services of its own.
class FakeNetServiceBrowser final : public NetServiceBrowser,
                                    public std::enable_shared_from_this<FakeNetServiceBrowser>
{
public:
    using Devices = std::vector<std::shared_ptr<const FakeDevice>>;
    using Services = std::vector<std::shared_ptr<FakeNetService>>;

    /// `present` tells the devices that are there when a search begins.
    FakeNetServiceBrowser(FakeRunLoop& loop, std::function<Devices()> present)
        : mLoop(loop), mPresent(std::move(present))
    {
    }

    void setDelegate(std::weak_ptr<NetServiceBrowserDelegate> delegate) override
    {
        mDelegate = std::move(delegate);
    }

    void searchForServicesOfType(const std::string& type, const std::string& domain) override
    {
        stop();
        ++mSearchCount;
        mSearching = true;
        mType = type;
        mDomain = domain;
        mServices.clear();
        find(mPresent());
    }

    void stop() override
    {
        mSearching = false;
        ++mSearch;
    }

    /// One batch of finds, on the next turn; devices of another type are passed over.
    void find(const Devices& devices)
    {
        Services batch;
        for (const auto& device : devices) {
            if (mSearching && device->type == mType)
                batch.push_back(std::make_shared<FakeNetService>(mLoop, device));
        }
        mServices.insert(mServices.end(), batch.begin(), batch.end());
        deliverLater(std::move(batch), true);
    }

    /// One batch of removals, on the next turn.
    void remove(const Devices& devices)
    {
        Services batch;
        for (const auto& device : devices) {
            const auto found =
                std::find_if(mServices.begin(), mServices.end(),
                             [&](const auto& each) { return each->device() == device; });
            if (!mSearching || found == mServices.end())
                continue;
            batch.push_back(*found);
            mServices.erase(found);
        }
        deliverLater(std::move(batch), false);
    }

    /// The services that were found and not removed since, in order.
    const Services& services() const { return mServices; }
    bool isSearching() const { return mSearching; }
    int searchCount() const { return mSearchCount; }
    const std::string& searchedType() const { return mType; }
    const std::string& searchedDomain() const { return mDomain; }

private:
    void deliverLater(Services batch, bool found)
    {
        mLoop.performAfterDelay(Duration::zero(), weak_from_this(),
                                [this, batch = std::move(batch), found, search = mSearch] {
                                    deliver(batch, found, search);
                                });
    }

    void deliver(const Services& batch, bool found, unsigned search)
    {
        for (std::size_t index = 0; index < batch.size(); ++index) {
            const auto delegate = mDelegate.lock();
            if (!delegate || search != mSearch)
                return;
            const bool moreComing = index + 1 < batch.size();
            if (found)
                delegate->didFindService(*this, batch[index], moreComing);
            else
                delegate->didRemoveService(*this, batch[index], moreComing);
        }
    }

    FakeRunLoop& mLoop;
    std::function<Devices()> mPresent;
    std::weak_ptr<NetServiceBrowserDelegate> mDelegate;
    Services mServices;
    std::string mType;
    std::string mDomain;
    unsigned mSearch = 0;
    int mSearchCount = 0;
    bool mSearching = false;
};

} // namespace farview
