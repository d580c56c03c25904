#include "Common/Rules/UpdateChoice.h"

#include "Common/Rules/VersionOrder.h"

namespace farview
{
namespace
{

bool suits(const UpdateItem& item, const std::string& system)
{
    return item.minimumSystemVersion.empty() ||
           compareVersions(item.minimumSystemVersion, system) <= 0;
}

bool isNewer(const UpdateItem& item, const UpdateItem* than)
{
    return !than || compareVersions(item.version, than->version) > 0;
}

/// In seconds: a clock may tell another time zone's time.
constexpr double largestAdvance = 24.0 * 60 * 60;

bool isBefore(Date left, Date right) { return left.secondsSince1970 < right.secondsSince1970; }

} // namespace

std::optional<UpdateProblem> problemOf(const FeedDates& feed, Date newest, Date now)
{
    if (isBefore({now.secondsSince1970 + largestAdvance}, feed.signedAt))
        return UpdateProblem::clock;
    if (isBefore(feed.signedAt, newest))
        return UpdateProblem::feedReplayed;
    if (isBefore(feed.expires, now))
        return UpdateProblem::feedExpired;
    return std::nullopt;
}

UpdateChoice chooseUpdate(const std::vector<UpdateItem>& items, const std::string& installed,
                          const std::string& system)
{
    using Kind = UpdateChoice::Kind;
    const UpdateItem* newest = nullptr;
    const UpdateItem* newestThatSuits = nullptr;
    for (const auto& item : items) {
        if (isNewer(item, newest))
            newest = &item;
        if (suits(item, system) && isNewer(item, newestThatSuits))
            newestThatSuits = &item;
    }
    if (!newest)
        return {Kind::current, installed, std::nullopt};
    if (newestThatSuits && compareVersions(newestThatSuits->version, installed) > 0)
        return {Kind::found, newest->version, *newestThatSuits};
    const bool isBehind = compareVersions(newest->version, installed) > 0;
    return {isBehind ? Kind::systemTooOld : Kind::current, newest->version, std::nullopt};
}

} // namespace farview
