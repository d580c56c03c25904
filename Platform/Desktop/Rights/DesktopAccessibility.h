#pragma once

#include "Platform/Accessibility.h"

namespace farview
{

class SessionBus;

/// True in sessions whose display server lets programs move windows (X11, KWin, wlroots); elsewhere
/// what the desktop's accessibility setting says.
class DesktopAccessibility final : public Accessibility
{
public:
    /// `bus` must outlive this.
    explicit DesktopAccessibility(SessionBus& bus) : mBus(bus) {}

    /// May block for a round trip on the bus, at most for its limit.
    bool isEnabled() const override;

private:
    bool isSettingOn() const;

    SessionBus& mBus;
};

} // namespace farview
