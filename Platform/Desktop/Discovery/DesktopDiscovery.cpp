#include "Platform/Desktop/Discovery/DesktopDiscovery.h"

#include "Platform/Desktop/Discovery/DesktopNetServiceBrowser.h"
#include "Platform/Desktop/Discovery/SourceChooser.h"

#include <utility>

namespace farview
{

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
