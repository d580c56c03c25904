#pragma once

#include "Platform/Log.h"
#include "Platform/NetService.h"

#include <memory>

namespace farview
{

class SourceChooser;

/// Finds services through the discovery daemon, or by itself where no daemon answers. Nothing is
/// started before the first search. Main thread only; the application object must exist.
class DesktopDiscovery final : public Discovery
{
public:
    /// `log` must outlive the discovery and its browsers.
    explicit DesktopDiscovery(Log& log);
    ~DesktopDiscovery() override;

    std::shared_ptr<NetServiceBrowser> makeBrowser() override;
    void checkAgain() override;
    DiscoveryCondition condition() const override;
    Subscription observeCondition(std::function<void()> changed) override;

private:
    std::shared_ptr<SourceChooser> mChooser;
};

} // namespace farview
