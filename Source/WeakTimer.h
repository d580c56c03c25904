#pragma once

#include "Platform/RunLoop.h"

#include <memory>

/// A reference to a timer that the run loop owns.
using WeakTimer = std::weak_ptr<farview::Timer>;

/// Holds that timer from now on and ends the one held before. Null only ends it; the timer that is
/// held already stays as it is.
inline void replaceTimer(WeakTimer& held, const WeakTimer& timer)
{
    const auto current = held.lock();
    if (current && current == timer.lock())
        return;
    if (current)
        current->invalidate();
    held = timer;
}
