#include "Platform/Fake/FakeNetServiceBrowser.h"

#include <algorithm>
#include <utility>

namespace farview
{

FakeNetServiceBrowser::FakeNetServiceBrowser(FakeRunLoop& loop, std::function<Devices()> present)
    : mLoop(loop), mPresent(std::move(present))
{
}

void FakeNetServiceBrowser::setDelegate(std::weak_ptr<NetServiceBrowserDelegate> delegate)
{
    mDelegate = std::move(delegate);
}

void FakeNetServiceBrowser::searchForServicesOfType(const std::string& type,
                                                    const std::string& domain)
{
    stop();
    ++mSearchCount;
    mSearching = true;
    mType = type;
    mDomain = domain;
    mServices.clear();
    find(mPresent());
}

void FakeNetServiceBrowser::stop()
{
    mSearching = false;
    ++mSearch;
}

void FakeNetServiceBrowser::find(const Devices& devices)
{
    Services batch;
    for (const auto& device : devices) {
        if (mSearching && device->type == mType)
            batch.push_back(std::make_shared<FakeNetService>(mLoop, device));
    }
    mServices.insert(mServices.end(), batch.begin(), batch.end());
    deliverLater(std::move(batch), true);
}

void FakeNetServiceBrowser::remove(const Devices& devices)
{
    Services batch;
    for (const auto& device : devices) {
        const auto found = std::find_if(mServices.begin(), mServices.end(),
                                        [&](const auto& each) { return each->device() == device; });
        if (!mSearching || found == mServices.end())
            continue;
        batch.push_back(*found);
        mServices.erase(found);
    }
    deliverLater(std::move(batch), false);
}

void FakeNetServiceBrowser::deliverLater(Services batch, bool found)
{
    mLoop.performAfterDelay(Duration::zero(), weak_from_this(),
                            [this, batch = std::move(batch), found, search = mSearch] {
                                deliver(batch, found, search);
                            });
}

void FakeNetServiceBrowser::deliver(const Services& batch, bool found, unsigned search)
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

} // namespace farview
