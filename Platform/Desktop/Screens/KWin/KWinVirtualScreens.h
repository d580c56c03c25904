#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/RunLoop.h"
#include "Platform/VirtualScreens.h"

#include <cstdint>

namespace farview
{

/// Monitors of a KDE session on Wayland, which KWin makes for programs that it trusts: those whose
/// desktop file says what they need. Main thread only; loop and bus must live longer.
class KWinVirtualScreens final : public VirtualScreens
{
public:
    KWinVirtualScreens(RunLoop& loop, SessionBus& bus) : mLoop(loop), mBus(bus) {}

    void availability(std::weak_ptr<void> target, Answer then) override;
    std::unique_ptr<VirtualScreen> open(const ScreenWish& wish, Delegate delegate) override;

private:
    RunLoop& mLoop;
    SessionBus& mBus;
    std::uint32_t mNextFinger = 0;
};

} // namespace farview
