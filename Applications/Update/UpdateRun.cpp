#include "Applications/Update/UpdateRun.h"

#include <utility>

namespace farview
{

UpdateRun::UpdateRun(UpdateArguments arguments, UpdateEvents& events,
                     std::function<void(int)> ended)
    : mArguments(std::move(arguments)), mEvents(events), mEnded(std::move(ended)),
      mBundle(ownPath(mArguments.bundle)), mStaging(mBundle), mHelpers(mBundle)
{
}

void UpdateRun::take(UpdateCommand command)
{
    if (command == UpdateCommand::download)
        mMayDownload = true;
    else if (command == UpdateCommand::install)
        mMayInstall = true;
    else if (!mMayInstall)
        mIsCancelled = true;
    proceed();
}

void UpdateRun::proceed()
{
    if (mStep == Step::ended || mStep == Step::working)
        return;
    if (mIsCancelled)
        mStep == Step::trying ? mTrial.breakOff() : cancel();
    else if (mStep == Step::offered && mMayDownload)
        download();
    else if (mStep == Step::ready && mMayInstall)
        install();
}

bool UpdateRun::isBrokenOff()
{
    mListen();
    return mIsCancelled;
}

void UpdateRun::cancel()
{
    mFetch.stop();
    mStaging.release();
    mEvents.cancelled();
    end(0);
}

void UpdateRun::fail(const UpdateFailure& failure)
{
    mStaging.release();
    mEvents.failed(failure);
    end(1);
}

void UpdateRun::end(int status)
{
    mStep = Step::ended;
    mEnded(status);
}

} // namespace farview
