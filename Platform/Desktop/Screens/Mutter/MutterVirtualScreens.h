#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/RunLoop.h"
#include "Platform/VirtualScreens.h"

namespace farview
{

class MutterLayout;

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
    std::weak_ptr<MutterLayout> mLayout; ///< while there are monitors, and a little longer
};

} // namespace farview
