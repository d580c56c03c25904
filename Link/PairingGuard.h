#pragma once

#include "Platform/RunLoop.h"

#include <deque>

namespace farview
{

/// Stands between strangers and the user: each pairing that fails is a guess at six digits, so
/// after three within ten minutes no more begin until the first of them is ten minutes old.
class PairingGuard
{
public:
    static constexpr std::size_t mostFailures = 3;
    static constexpr Duration memory{600.0};

    /// A pairing began and led to nothing, for whatever reason.
    void failed(Duration now)
    {
        mFailures.push_back(now);
        if (mFailures.size() > mostFailures)
            mFailures.pop_front();
    }
    /// Whether nobody is let in for now.
    bool isClosed(Duration now) const
    {
        return mFailures.size() == mostFailures && now - mFailures.front() < memory;
    }

private:
    std::deque<Duration> mFailures; ///< the last ones, the oldest first
};

} // namespace farview
