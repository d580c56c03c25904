#include "Platform/Desktop/Screens/Portal/PortalVirtualScreens.h"

#include "Platform/Desktop/Screens/Portal/PortalMonitor.h"

#include <utility>

namespace farview
{

PortalVirtualScreens::PortalVirtualScreens(RunLoop& loop, SessionBus& bus, PortalMemory memory)
    : mLoop(loop), mBus(bus), mMemory(std::move(memory))
{
}

void PortalVirtualScreens::availability(std::weak_ptr<void> target, Answer then)
{
    askPortal(mBus, &mAsker,
              [target = std::move(target), then = std::move(then)](const PortalOffer& offer) {
                  if (const auto kept = target.lock())
                      then(availabilityOf(offer));
              });
}

std::unique_ptr<VirtualScreen> PortalVirtualScreens::open(const ScreenWish& wish, Delegate delegate)
{
    return std::make_unique<PortalMonitor>(mLoop, mBus, mMemory, wish, std::move(delegate));
}

} // namespace farview
