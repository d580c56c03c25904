#pragma once

#include "Platform/RunLoop.h"

#include <algorithm>

namespace farview
{

/// The pauses between attempts at something that keeps failing: the first, then twice as long each
/// time, never longer than the longest.
class GrowingPause
{
public:
    constexpr GrowingPause(Duration first, Duration longest)
        : mFirst(first), mLongest(longest), mNext(first)
    {
    }

    /// The pause to make now.
    constexpr Duration next()
    {
        const Duration pause = mNext;
        mNext = std::min(mNext * 2, mLongest);
        return pause;
    }
    /// Begins again with the first; to be called after a success.
    constexpr void reset() { mNext = mFirst; }

private:
    Duration mFirst;
    Duration mLongest;
    Duration mNext;
};

} // namespace farview
