#include "Platform/Desktop/Discovery/DesktopDiscovery.h"

#include "Platform/Desktop/Discovery/DesktopNetService.h"
#include "Platform/Desktop/Discovery/EventBatch.h"
#include "Platform/Desktop/Discovery/ServiceNames.h"
#include "Platform/Desktop/Discovery/SourceChooser.h"
#include "Platform/Desktop/Discovery/TypeSearch.h"

#include <map>
#include <utility>

namespace farview
{
namespace
{

/// One running search, with service objects of its own on top of the shared search.
class DesktopNetServiceBrowser final : public NetServiceBrowser,
                                       public TypeSearchObserver,
                                       public std::enable_shared_from_this<DesktopNetServiceBrowser>
{
public:
    explicit DesktopNetServiceBrowser(std::shared_ptr<SourceChooser> chooser)
        : mChooser(std::move(chooser)),
          mBatch([this](bool found, const auto& services) { deliver(found, services); })
    {
    }

    void setDelegate(std::weak_ptr<NetServiceBrowserDelegate> delegate) override
    {
        mDelegate = std::move(delegate);
    }

    void searchForServicesOfType(const std::string& type, const std::string& domain) override
    {
        stop();
        mSearch = mChooser->search(withoutTrailingDot(type), withoutTrailingDot(domain));
        for (const auto& service : mSearch->services())
            appeared(service);
        mSearch->addObserver(weak_from_this());
    }

    void stop() override
    {
        ++mSearchNumber;
        mBatch.clear();
        mServices.clear();
        if (mSearch)
            mSearch->removeObserver(*this);
        mSearch.reset();
    }

    void appeared(const std::shared_ptr<KnownService>& service) override
    {
        const auto handedOut = DesktopNetService::make(service);
        mServices[service] = handedOut;
        mBatch.addFound(handedOut);
    }

    void disappeared(const std::shared_ptr<KnownService>& service) override
    {
        const auto node = mServices.extract(service);
        if (node)
            mBatch.addRemoved(node.mapped());
    }

private:
    void deliver(bool found, const EventBatch::Services& services)
    {
        const auto self = shared_from_this();
        const unsigned number = mSearchNumber;
        for (std::size_t index = 0; index < services.size(); ++index) {
            const auto delegate = mDelegate.lock();
            if (!delegate || number != mSearchNumber)
                return;
            const bool moreComing = index + 1 < services.size();
            if (found)
                delegate->didFindService(*this, services[index], moreComing);
            else
                delegate->didRemoveService(*this, services[index], moreComing);
        }
    }

    std::shared_ptr<SourceChooser> mChooser;
    std::weak_ptr<NetServiceBrowserDelegate> mDelegate;
    std::shared_ptr<TypeSearch> mSearch;
    std::map<std::shared_ptr<KnownService>, std::shared_ptr<NetService>> mServices;
    EventBatch mBatch;
    unsigned mSearchNumber = 0;
};

} // namespace

DesktopDiscovery::DesktopDiscovery(Log& log) : mChooser(std::make_shared<SourceChooser>(log)) {}

DesktopDiscovery::~DesktopDiscovery() = default;

std::shared_ptr<NetServiceBrowser> DesktopDiscovery::makeBrowser()
{
    return std::make_shared<DesktopNetServiceBrowser>(mChooser);
}

void DesktopDiscovery::checkAgain() { mChooser->checkAgain(); }

DiscoveryCondition DesktopDiscovery::condition() const { return mChooser->condition(); }

Subscription DesktopDiscovery::observeCondition(std::function<void()> changed)
{
    return mChooser->observeCondition(std::move(changed));
}

} // namespace farview
