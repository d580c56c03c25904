#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/RunLoop.h"
#include "Platform/VirtualScreens.h"

namespace farview
{

/// Monitors of a GNOME session on Wayland, which Mutter makes on request. Main thread only; loop
/// and bus must live longer.
class MutterVirtualScreens final : public VirtualScreens
{
public:
    MutterVirtualScreens(RunLoop& loop, SessionBus& bus) : mLoop(loop), mBus(bus) {}

    void availability(std::weak_ptr<void> target, Answer then) override;
    std::unique_ptr<VirtualScreen> open(const ScreenWish& wish, Delegate delegate) override;

private:
    RunLoop& mLoop;
    SessionBus& mBus;
};

} // namespace farview
