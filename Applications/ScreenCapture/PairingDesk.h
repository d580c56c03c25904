#pragma once

#include "Common/PairedPeers.h"
#include "Common/Rules/PairingReport.h"
#include "Link/PairingGuard.h"

#include <functional>
#include <string>
#include <utility>

namespace farview
{

/// Which devices the user has confirmed, and what is in question of others: one question at a time,
/// whoever of the server's connections asks. Main thread only.
class PairingDesk
{
public:
    /// `storage` outlives it; `changed` is called after each change of the report.
    PairingDesk(Preferences& storage, std::function<void()> changed)
        : mPeers(storage, PairedPeers::devices), mChanged(std::move(changed))
    {
    }

    PairedPeers& peers() { return mPeers; }
    const PairedPeers& peers() const { return mPeers; }
    PairingGuard& guard() { return mGuard; }

    const PairingReport& report() const { return mReport; }
    /// Whether the user was shown digits, and nothing came of it yet.
    bool isAsking() const { return !mReport.digits.empty(); }
    void tell(const PairingReport& report)
    {
        if (std::exchange(mReport, report) != report)
            mChanged();
    }

private:
    PairedPeers mPeers;
    PairingGuard mGuard;
    PairingReport mReport;
    std::function<void()> mChanged;
};

} // namespace farview
