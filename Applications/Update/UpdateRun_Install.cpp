// Puts the new bundle in place of the old one.

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
    // The old bundle lies in there now.
    mStaging.release();
    failure ? say(*failure)
            : say("installed", {{"version", QString::fromStdString(mItem.version)}});
    mHelpers.startAgain([this, status = failure ? 1 : 0] { end(status); });
}

std::optional<UpdateFailure> UpdateRun::exchange()
{
    // It may be long ago that the bundle was read.
    const auto facts = readBundleFacts(mBundle);
    if (!facts || facts->version != mFacts.version)
        return UpdateFailure{UpdateProblem::downgrade, "the bundle was replaced by another"};
    return BundleExchange{mBundle, mReplacement, mStaging.asidePath()}.run(RenameCalls());
}

} // namespace farview
