#pragma once

#include "Platform/Desktop/Discovery/EventBatch.h"
#include "Platform/Desktop/Discovery/TypeSearch.h"
#include "Platform/NetService.h"

#include <map>
#include <memory>

namespace farview
{

class SourceChooser;

/// One running search, with service objects of its own on top of the shared search.
class DesktopNetServiceBrowser final : public NetServiceBrowser,
                                       public TypeSearchObserver,
                                       public std::enable_shared_from_this<DesktopNetServiceBrowser>
{
public:
    explicit DesktopNetServiceBrowser(std::shared_ptr<SourceChooser> chooser);

    void setDelegate(std::weak_ptr<NetServiceBrowserDelegate> delegate) override;
    void searchForServicesOfType(const std::string& type, const std::string& domain) override;
    void stop() override;

    void appeared(const std::shared_ptr<KnownService>& service) override;
    void disappeared(const std::shared_ptr<KnownService>& service) override;

private:
    void deliver(bool found, const EventBatch::Services& services);

    std::shared_ptr<SourceChooser> mChooser;
    std::weak_ptr<NetServiceBrowserDelegate> mDelegate;
    std::shared_ptr<TypeSearch> mSearch;
    std::map<std::shared_ptr<KnownService>, std::shared_ptr<NetService>> mServices;
    EventBatch mBatch;
    unsigned mSearchNumber = 0;
};

} // namespace farview
