// Downloads, verifies, unpacks and tries the new bundle, before the old one is touched.

#include "Applications/Update/Signature.h"
#include "Applications/Update/Unpacking.h"
#include "Applications/Update/UpdateRun.h"
#include "Common/Rules/VersionOrder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <chrono>
#include <utility>

namespace farview
{
namespace
{

/// How many times its length the disk must have free for an archive.
constexpr std::uint64_t expansion = 10;
constexpr int millisecondsBetweenReports = 100;
/// In bytes per second: that of an ISDN line. A slower transfer counts as one that stalled.
constexpr std::uint64_t slowestRate = 8000;

std::optional<UpdateFailure> makePrivateFolder(const std::string& path)
{
    return ::mkdir(path.c_str(), S_IRWXU) == 0 ? std::nullopt
                                               : std::optional(writeFailure(errno, path));
}

} // namespace

void UpdateRun::download()
{
    mStep = Step::downloading;
    if (auto failure = makeRoom())
        return fail(*failure);
    mSinceProgress.start();
    const std::chrono::seconds transfer(mItem.length / slowestRate);
    const FetchOrder order{mArchive, mItem.length, UpdateProblem::wrongLength, mArguments.patience,
                           2 * mArguments.patience + transfer};
    mFetch.start(
        order, [this](std::uint64_t received) { takeProgress(received); },
        [this](const std::string& bytes, std::optional<UpdateFailure> failure) {
            failure ? fail(*failure) : takeArchive(bytes);
        });
}

std::optional<UpdateFailure> UpdateRun::makeRoom()
{
    if (auto failure = mStaging.acquire())
        return failure;
    struct statvfs disk {
    };
    if (::statvfs(mStaging.path().c_str(), &disk) != 0)
        return writeFailure(errno, mStaging.path());
    if (std::uint64_t{disk.f_bavail} * disk.f_frsize < expansion * mItem.length)
        return UpdateFailure{UpdateProblem::noSpace, "too little is free"};
    return std::nullopt;
}

void UpdateRun::takeProgress(std::uint64_t received)
{
    const bool isComplete = received == mItem.length;
    if (!isComplete && mSinceProgress.elapsed() < millisecondsBetweenReports)
        return;
    mSinceProgress.start();
    say("downloading", {{"received", static_cast<qint64>(received)},
                        {"length", static_cast<qint64>(mItem.length)}});
}

void UpdateRun::takeArchive(const std::string& bytes)
{
    mStep = Step::working;
    say("verifying");
    const auto failure = prepare(bytes);
    if (mIsCancelled)
        return cancel();
    failure ? fail(*failure) : tryOut();
}

/// The bytes that are unpacked are those that were verified: they stay in memory between.
std::optional<UpdateFailure> UpdateRun::prepare(const std::string& archive)
{
    if (archive.size() != mItem.length)
        return UpdateFailure{UpdateProblem::wrongLength,
                             std::to_string(archive.size()) + " bytes came"};
    if (!isSigned(archive, mItem.signature, mFacts.publicKey))
        return UpdateFailure{UpdateProblem::wrongSignature, "not signed with the bundle's key"};
    const std::string folder = mStaging.path() + "/new";
    if (auto failure = makePrivateFolder(folder))
        return failure;
    Unpacking unpacking(folder, UnpackLimits{}, [this] { return hearsCancellation(); });
    if (auto failure = unpacking.unpack(archive))
        return failure;
    mReplacement = folder + "/" + unpacking.top();
    return compare();
}

/// A signature says who made the archive, not which one was asked for.
std::optional<UpdateFailure> UpdateRun::compare() const
{
    const auto facts = readBundleFacts(mReplacement);
    if (!facts || facts->identifier != mFacts.identifier || facts->version.empty())
        return UpdateFailure{UpdateProblem::archive, "it holds no bundle of this identifier"};
    if (compareVersions(facts->version, mFacts.version) <= 0)
        return UpdateFailure{UpdateProblem::downgrade, "it holds version " + facts->version};
    if (compareVersions(facts->version, mItem.version) != 0)
        return UpdateFailure{UpdateProblem::wrongVersion, "it holds version " + facts->version};
    return std::nullopt;
}

void UpdateRun::tryOut()
{
    const std::string folder = mStaging.path() + "/home";
    if (const auto failure = makePrivateFolder(folder))
        return fail(*failure);
    mStep = Step::trying;
    mTrial.start(mArguments.host, mReplacement, folder,
                 [this](const std::optional<UpdateFailure>& failure) { takeTrialResult(failure); });
}

void UpdateRun::takeTrialResult(const std::optional<UpdateFailure>& failure)
{
    if (mIsCancelled)
        return cancel();
    if (failure)
        return fail(*failure);
    // The panel ends them before it says "install".
    mHelpers.note();
    mStep = Step::ready;
    say("ready", {{"version", QString::fromStdString(mItem.version)}});
    proceed();
}

} // namespace farview
