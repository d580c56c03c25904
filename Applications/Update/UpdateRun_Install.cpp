// The exchange.

#include "Applications/Update/BundleExchange.h"
#include "Applications/Update/UpdateRun.h"

#include <utility>

namespace farview
{

void UpdateRun::install()
{
    mStep = Step::working;
    say("installing");
    const auto failure = exchange();
    // With it goes the old bundle.
    mStaging.release();
    failure ? say(*failure)
            : say("installed", {{"version", QString::fromStdString(mItem.version)}});
    mHelpers.startAgain([this, status = failure ? 1 : 0] { end(status); });
}

std::optional<UpdateFailure> UpdateRun::exchange()
{
    // Much time may have passed since the user was asked.
    const auto facts = readBundleFacts(mBundle);
    if (!facts || facts->version != mFacts.version)
        return UpdateFailure{UpdateProblem::downgrade, "the bundle was replaced by another"};
    return BundleExchange{mBundle, mReplacement, mStaging.asidePath()}.run(NameChanges());
}

} // namespace farview
