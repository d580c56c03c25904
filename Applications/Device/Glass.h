#pragma once

#include "Screen/PictureReceiver.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace farview
{

class InputReporter;

/// Where people see the picture of a host. Main thread only.
class Glass
{
public:
    virtual ~Glass() = default;

    /// The screen that shows the picture, or would show it.
    virtual LinkDeviceScreen screen() const = 0;
    /// `changed` is called on a later turn when the screen may have changed.
    virtual void setScreenObserver(std::function<void()> changed) = 0;

    /// What the user does with the picture is reported to `input` from now on, which takes no more
    /// than its host wants; to nobody when it is null.
    virtual void setInput(InputReporter* input) = 0;

    /// A picture begins, black, in the place of the one before. It is read until the next begins or
    /// `endPicture` is called.
    virtual void beginPicture(const PictureReceiver& picture) = 0;
    /// A frame of the picture is complete: `changed` is what it changed, `bytes` what it took on
    /// the network. `drawn` is called on a later turn, when people can see it; not when another
    /// frame comes first, or the picture ends.
    virtual void showFrame(const std::vector<PixelRect>& changed, std::size_t bytes,
                           std::function<void()> drawn) = 0;
    /// The picture's pointer moved or changed its shape. Pointers do not wait for a frame.
    virtual void movePointer() = 0;
    /// There is no picture any more. Does nothing when there is none.
    virtual void endPicture() = 0;
};

} // namespace farview
