#include "Platform/Desktop/Discovery/DesktopNetServiceBrowser.h"

#include "Platform/Desktop/Discovery/DesktopNetService.h"
#include "Platform/Desktop/Discovery/ServiceNames.h"
#include "Platform/Desktop/Discovery/SourceChooser.h"

#include <utility>

namespace farview
{

DesktopNetServiceBrowser::DesktopNetServiceBrowser(std::shared_ptr<SourceChooser> chooser)
    : mChooser(std::move(chooser)),
      mBatch([this](bool found, const auto& services) { deliver(found, services); })
{
}

void DesktopNetServiceBrowser::setDelegate(std::weak_ptr<NetServiceBrowserDelegate> delegate)
{
    mDelegate = std::move(delegate);
}

void DesktopNetServiceBrowser::searchForServicesOfType(const std::string& type,
                                                       const std::string& domain)
{
    stop();
    mSearch = mChooser->search(withoutTrailingDot(type), withoutTrailingDot(domain));
    for (const auto& service : mSearch->services())
        appeared(service);
    mSearch->addObserver(weak_from_this());
}

void DesktopNetServiceBrowser::stop()
{
    ++mSearchNumber;
    mBatch.clear();
    mServices.clear();
    if (mSearch)
        mSearch->removeObserver(*this);
    mSearch.reset();
}

void DesktopNetServiceBrowser::appeared(const std::shared_ptr<KnownService>& service)
{
    const auto handedOut = DesktopNetService::make(service);
    mServices[service] = handedOut;
    mBatch.addFound(handedOut);
}

void DesktopNetServiceBrowser::disappeared(const std::shared_ptr<KnownService>& service)
{
    const auto node = mServices.extract(service);
    if (node)
        mBatch.addRemoved(node.mapped());
}

void DesktopNetServiceBrowser::deliver(bool found, const EventBatch::Services& services)
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

} // namespace farview
