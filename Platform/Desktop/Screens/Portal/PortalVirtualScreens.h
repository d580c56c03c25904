#pragma once

#include "Platform/Desktop/Screens/Portal/PortalSession.h"
#include "Platform/RunLoop.h"
#include "Platform/VirtualScreens.h"

#include <QObject>

namespace farview
{

/// Monitors of the desktop's portal, which asks the user: for sandboxes, and for desktops that
/// nothing else here can ask. Main thread only; loop and bus must live longer.
class PortalVirtualScreens final : public VirtualScreens
{
public:
    explicit PortalVirtualScreens(RunLoop& loop, SessionBus& bus, PortalMemory memory = {});

    void availability(std::weak_ptr<void> target, Answer then) override;
    std::unique_ptr<VirtualScreen> open(const ScreenWish& wish, Delegate delegate) override;

private:
    RunLoop& mLoop;
    SessionBus& mBus;
    PortalMemory mMemory;
    QObject mAsker;
};

} // namespace farview
