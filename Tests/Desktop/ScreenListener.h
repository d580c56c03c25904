#pragma once

#include "Platform/VirtualScreens.h"

#include <optional>

namespace farview
{

/// What a test was told last of one monitor.
struct ScreenListener final : VirtualScreenDelegate {
    std::optional<ScreenGeometry> geometry;
    std::optional<ScreenObstacle> end;

    void didAppear(const ScreenGeometry& appeared) override { geometry = appeared; }
    void didChange(const ScreenGeometry& changed) override { geometry = changed; }
    void frameReady() override {}
    void cursorChanged() override {}
    void didEnd(ScreenObstacle reason) override { end = reason; }
};

} // namespace farview
