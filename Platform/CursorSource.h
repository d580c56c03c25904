#pragma once

#include "Platform/Types/PixelRect.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace farview
{

/// What the mouse pointer looks like. Pixels are as in a `FrameView`, but their highest byte says
/// how opaque they are, and the colours are multiplied by it already. Without pixels it is hidden.
struct CursorImage {
    int width = 0;
    int height = 0;
    /// The pixel that points.
    PixelPoint hotspot;
    std::vector<std::uint32_t> pixels;

    bool operator==(const CursorImage&) const = default;
};

/// The mouse pointer of one monitor. May be asked on any thread.
class CursorSource
{
public:
    virtual ~CursorSource() = default;

    /// Whether the frames show it, so that there is nothing to ask for here.
    virtual bool isInFrames() const = 0;
    /// What it looks like, when that has changed since it was taken last.
    virtual std::optional<CursorImage> takeImage() = 0;
    /// Where it points on the monitor; nothing while it is elsewhere.
    virtual std::optional<PixelPoint> position() = 0;
};

/// For monitors whose frames show it.
class CursorInFrames final : public CursorSource
{
public:
    bool isInFrames() const override { return true; }
    std::optional<CursorImage> takeImage() override { return std::nullopt; }
    std::optional<PixelPoint> position() override { return std::nullopt; }
};

} // namespace farview
