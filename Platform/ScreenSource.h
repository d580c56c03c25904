#pragma once

#include "Platform/Types/FrameView.h"

#include <memory>
#include <optional>
#include <vector>

namespace farview
{

/// A monitor's pixels at one moment.
struct ScreenFrame {
    FrameView view;
    /// What may differ from the frame before it: parts of this frame, perhaps overlapping. The
    /// first frame, and the first one of another size, is damaged as a whole.
    std::vector<PixelRect> damage;
    /// The pixels stay as they are until this and its copies are gone.
    std::shared_ptr<void> lease;
};

/// The pixels of one monitor, without the mouse pointer where `CursorSource` has it. One frame is
/// out at a time.
class ScreenSource
{
public:
    virtual ~ScreenSource() = default;

    /// The newest frame; nothing when there is none newer than the one taken before, or while that
    /// is not released. Never waits. May be called on any thread, and the frame may outlive the
    /// monitor.
    virtual std::optional<ScreenFrame> takeFrame() = 0;
};

} // namespace farview
