#pragma once

#include "Platform/VirtualScreens.h"

#include <functional>
#include <optional>
#include <vector>

namespace farview
{

/// What a test was told last of one monitor, and before.
struct ScreenListener final : VirtualScreenDelegate {
    std::optional<ScreenGeometry> geometry;
    std::vector<ScreenGeometry> geometries;
    std::optional<ScreenObstacle> end;
    std::function<void()> frame = [] {};

    void didAppear(const ScreenGeometry& appeared) override { didChange(appeared); }
    void didChange(const ScreenGeometry& changed) override
    {
        geometry = changed;
        geometries.push_back(changed);
    }
    void frameReady() override { frame(); }
    void cursorChanged() override {}
    void didEnd(ScreenObstacle reason) override { end = reason; }
};

} // namespace farview
