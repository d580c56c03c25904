#pragma once

#include "Platform/Fake/FakeNetService.h"

#include <memory>
#include <string>
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
    FakeNetServiceBrowser(FakeRunLoop& loop, std::function<Devices()> present);

    void setDelegate(std::weak_ptr<NetServiceBrowserDelegate> delegate) override;
    void searchForServicesOfType(const std::string& type, const std::string& domain) override;
    void stop() override;

    /// One batch of finds, on the next turn; devices of another type are passed over.
    void find(const Devices& devices);
    /// One batch of removals, on the next turn.
    void remove(const Devices& devices);

    /// The services that were found and not removed since, in order.
    const Services& services() const { return mServices; }
    bool isSearching() const { return mSearching; }
    int searchCount() const { return mSearchCount; }
    const std::string& searchedType() const { return mType; }
    const std::string& searchedDomain() const { return mDomain; }

private:
    void deliverLater(Services batch, bool found);
    void deliver(const Services& batch, bool found, unsigned search);

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
