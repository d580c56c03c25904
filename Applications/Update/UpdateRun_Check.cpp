// Reads the feed and judges what it offers.

#include "Applications/Update/FeedReader.h"
#include "Applications/Update/Signature.h"
#include "Applications/Update/UpdateRun.h"
#include "Platform/Posix/FolderListing.h"
#include "Platform/Posix/PosixSystemVersion.h"
#include "Platform/Posix/PropertyLists/PropertyListScalars.h"
#include "Platform/Posix/Settings/FilePreferences.h"
#include "Platform/Posix/StandardErrorLog.h"

#include <ctime>
#include <utility>

namespace farview
{
namespace
{

/// In bytes. The archive is held in memory until it is unpacked.
constexpr std::uint64_t largestArchive = 100u << 20;

std::string systemVersion()
{
    PosixSystemVersion system;
    const auto number = [&](SystemVersionQuery query) {
        return std::to_string(system.gestalt(query).value_or(0));
    };
    return number(SystemVersionQuery::major) + "." + number(SystemVersionQuery::minor) + "." +
           number(SystemVersionQuery::bugFix);
}

std::string textOf(Date date) { return textFromDate(date).value_or("never"); }

/// Remembers a feed that counts with the user's settings, for each key: an older one counts no
/// more.
std::optional<UpdateFailure> checkDates(const FeedDates& feed, const BundleFacts& facts)
{
    StandardErrorLog log("farview-update");
    FilePreferences settings(PreferencesLocations(EnvironmentUse::honoured), log);
    const std::string key = "newestFeed " + facts.publicKey;
    const auto stored = settings.copyAppValue(key, facts.identifier);
    const Date* newest = stored ? stored->get<Date>() : nullptr;
    const Date now{static_cast<double>(std::time(nullptr))};
    if (const auto problem = problemOf(feed, newest ? *newest : Date(), now))
        return UpdateFailure{*problem, "signed " + textOf(feed.signedAt) + ", good until " +
                                           textOf(feed.expires)};
    settings.setAppValue(key, feed.signedAt, facts.identifier);
    settings.appSynchronize(facts.identifier);
    return std::nullopt;
}

QUrl addressFrom(const std::string& text)
{
    return QUrl(QString::fromStdString(text), QUrl::StrictMode);
}

} // namespace

void UpdateRun::start()
{
    // Cancelled before it began.
    if (mStep == Step::ended)
        return;
    say("checking");
    if (auto failure = checkBundle())
        return fail(*failure);
    const FetchOrder order{mFeed, FeedReader::largestSize, UpdateProblem::tooLarge,
                           mArguments.patience, 2 * mArguments.patience};
    mFetch.start(
        order, [](std::uint64_t) {},
        [this](const std::string& bytes, std::optional<UpdateFailure> failure) {
            failure ? fail(*failure) : takeFeed(bytes);
        });
}

/// What can fail before the network is asked.
std::optional<UpdateFailure> UpdateRun::checkBundle()
{
    if (isAnythingAt(mBundle) && !mayReplaceBundle(mBundle))
        return UpdateFailure{UpdateProblem::managed, mBundle + " may not be written"};
    if (auto failure = mStaging.removeLeftovers())
        return failure;
    const auto facts = readBundleFacts(mBundle);
    if (!facts)
        return UpdateFailure{UpdateProblem::internal, "no bundle at " + mBundle};
    mFacts = *facts;
    if (mFacts.version.empty() || mFacts.feed.empty() || !isPublicKey(mFacts.publicKey))
        return UpdateFailure{UpdateProblem::notConfigured,
                             "version, SUFeedURL or SUPublicEDKey is missing in the Info.plist"};
    mFeed = addressFrom(mFacts.feed);
    if (!isSecureAddress(mFeed))
        return UpdateFailure{UpdateProblem::insecureAddress, mFacts.feed};
    return std::nullopt;
}

void UpdateRun::takeFeed(const std::string& bytes)
{
    const auto genuine = verifiedFeed(bytes, mFacts.publicKey);
    if (!genuine)
        return fail(UpdateFailure{UpdateProblem::wrongSignature,
                                  "the feed is not signed with the bundle's key"});
    const auto feed = FeedReader::read(*genuine);
    if (!feed.items)
        return fail(UpdateFailure{UpdateProblem::feedUnreadable, feed.reason});
    if (const auto failure = checkDates(feed.dates, mFacts))
        return fail(*failure);
    const auto choice = chooseUpdate(*feed.items, mFacts.version, systemVersion());
    if (choice.kind == UpdateChoice::Kind::systemTooOld)
        return fail(UpdateFailure{UpdateProblem::systemTooOld, choice.offered});
    if (choice.kind == UpdateChoice::Kind::found)
        return offer(*choice.item);
    say("current", {{"version", QString::fromStdString(mFacts.version)},
                    {"offered", QString::fromStdString(choice.offered)}});
    end(0);
}

/// Why the item cannot be installed, as far as the feed tells.
std::optional<UpdateFailure> UpdateRun::refusalOf(const UpdateItem& item)
{
    mArchive = mFeed.resolved(addressFrom(item.address));
    if (!isSecureAddress(mArchive) || (mArchive.isLocalFile() && !mFeed.isLocalFile()))
        return UpdateFailure{UpdateProblem::insecureAddress, item.address};
    if (item.length == 0)
        return UpdateFailure{UpdateProblem::wrongLength, "the feed says no length"};
    if (item.length > largestArchive)
        return UpdateFailure{UpdateProblem::tooLarge,
                             std::to_string(item.length) + " bytes are announced"};
    if (item.signature.empty())
        return UpdateFailure{UpdateProblem::wrongSignature, "the archive is not signed"};
    return std::nullopt;
}

void UpdateRun::offer(const UpdateItem& item)
{
    if (auto failure = refusalOf(item))
        return fail(*failure);
    mItem = item;
    say("found", {{"version", QString::fromStdString(mItem.version)},
                  {"notes", QString::fromStdString(mItem.notes)},
                  {"length", static_cast<qint64>(mItem.length)}});
    if (mArguments.onlyChecks)
        return end(0);
    mStep = Step::offered;
    proceed();
}

} // namespace farview
