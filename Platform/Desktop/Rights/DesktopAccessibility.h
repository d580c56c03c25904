#pragma once

#include "Platform/Accessibility.h"

#include <QObject>

namespace farview
{

class SessionBus;

/// True in sessions whose display server lets programs move windows (X11, KWin, wlroots); elsewhere
/// what the desktop's accessibility setting says.
class DesktopAccessibility final : public QObject, public Accessibility
{
public:
    /// `bus` must outlive this.
    explicit DesktopAccessibility(SessionBus& bus) : mBus(bus) {}

    /// A setting that is not told within a second counts as off.
    void askWhetherEnabled(std::weak_ptr<void> asker,
                           std::function<void(bool isEnabled)> answer) override;

private:
    SessionBus& mBus;
};

} // namespace farview
