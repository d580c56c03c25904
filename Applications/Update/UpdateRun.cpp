#include "Applications/Update/UpdateRun.h"

#include "Applications/Update/BundleExchange.h"

#include <QJsonDocument>

#include <utility>

namespace farview
{

UpdateRun::UpdateRun(UpdateArguments arguments, std::FILE* output, std::function<void(int)> ended)
    : mArguments(std::move(arguments)), mOutput(output), mEnded(std::move(ended)),
      mBundle(canonicalPath(mArguments.bundle)), mStaging(mBundle), mHelpers(mBundle)
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
        mStep == Step::trying ? mTrial.cancel() : cancel();
    else if (mStep == Step::offered && mMayDownload)
        download();
    else if (mStep == Step::ready && mMayInstall)
        install();
}

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

void UpdateRun::say(const char* event, QJsonObject details)
{
    details["event"] = event;
    const QByteArray line = QJsonDocument(details).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), mOutput);
    std::fflush(mOutput);
}

void UpdateRun::say(const UpdateFailure& failure)
{
    say("failed", {{"reason", QString::fromStdString(std::string(wordOf(failure.problem)))},
                   {"detail", QString::fromStdString(failure.detail)}});
}

bool UpdateRun::hearsCancellation()
{
    mListen();
    return mIsCancelled;
}

void UpdateRun::cancel()
{
    mFetch.stop();
    mStaging.release();
    say("cancelled");
    end(0);
}

void UpdateRun::fail(const UpdateFailure& failure)
{
    mStaging.release();
    say(failure);
    end(1);
}

void UpdateRun::end(int status)
{
    mStep = Step::ended;
    mEnded(status);
}

} // namespace farview
