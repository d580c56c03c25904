#pragma once

#include "Applications/Update/BundleFacts.h"
#include "Applications/Update/Fetch.h"
#include "Applications/Update/HelperPrograms.h"
#include "Applications/Update/Staging.h"
#include "Applications/Update/TrialRun.h"
#include "Applications/Update/UpdateArguments.h"
#include "Applications/Update/UpdateCommands.h"
#include "Common/Rules/UpdateChoice.h"

#include <QElapsedTimer>
#include <QJsonObject>
#include <QUrl>

#include <cstdio>
#include <functional>
#include <optional>
#include <string>

namespace farview
{

/// One update of one bundle, from the feed to the exchange. Until the exchange the bundle is not
/// touched, and a run that fails or is cancelled leaves no trace. Main thread.
class UpdateRun
{
public:
    /// Says what happens on `output`, one JSON object per line; who reads it may have gone. `ended`
    /// is called once, with the exit status. `output` is used, not owned.
    UpdateRun(UpdateArguments arguments, std::FILE* output, std::function<void(int)> ended);

    void start();
    void take(UpdateCommand command);
    /// `listen` is called often by steps that block, so that they hear of a cancellation.
    void setListen(std::function<void()> listen) { mListen = std::move(listen); }

private:
    enum class Step { checking, offered, downloading, working, trying, ready, ended };

    std::optional<UpdateFailure> checkBundle();
    void takeFeed(const std::string& bytes);
    void offer(const UpdateItem& item);
    std::optional<UpdateFailure> refusalOf(const UpdateItem& item);

    void proceed();
    void download();
    std::optional<UpdateFailure> makeRoom();
    void takeProgress(std::uint64_t received);
    void takeArchive(const std::string& bytes);
    std::optional<UpdateFailure> prepare(const std::string& archive);
    std::optional<UpdateFailure> compare() const;
    void tryOut();
    void takeTrialResult(const std::optional<UpdateFailure>& failure);

    void install();
    std::optional<UpdateFailure> exchange();

    void say(const char* event, QJsonObject details = {});
    void say(const UpdateFailure& failure);
    bool hearsCancellation();
    void cancel();
    void fail(const UpdateFailure& failure);
    void end(int status);

    UpdateArguments mArguments;
    std::FILE* mOutput;
    std::function<void(int)> mEnded;
    std::function<void()> mListen = [] {};
    Step mStep = Step::checking;
    bool mMayDownload = false;
    bool mMayInstall = false;
    bool mIsCancelled = false;

    std::string mBundle; ///< its own path
    BundleFacts mFacts;
    QUrl mFeed;
    UpdateItem mItem; ///< what is offered
    QUrl mArchive;
    std::string mReplacement; ///< the new bundle, in the staging folder
    QElapsedTimer mSinceProgress;

    Staging mStaging;
    Fetch mFetch;
    TrialRun mTrial;
    HelperPrograms mHelpers;
};

} // namespace farview
