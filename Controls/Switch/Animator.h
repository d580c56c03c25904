#pragma once

#include "Controls/Animation.h"
#include "Platform/RunLoop.h"

#include <functional>

namespace farview
{

/// Plays the way from one number to another, as whoever shows it thinks right: at once where
/// nobody sees it or the user wants nothing to move. One way at a time.
class Animator
{
public:
    virtual ~Animator() = default;

    /// Calls `show` with numbers on the way, and with `to` itself at the end. Leaves a way that is
    /// being played where it is.
    virtual void play(double from, double to, Duration duration, const Animation& animation,
                      std::function<void(double)> show) = 0;
    /// Leaves the way that is being played where it is. Does nothing when there is none.
    virtual void stop() = 0;
};

} // namespace farview
